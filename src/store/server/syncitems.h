#pragma once
#include "store/rec.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QMetaType>

// What travels between a seat and its company server.

// A record as the server holds it.
struct ServerRow
{
    Rec rec;
    qint64 version = 0;
    qint64 pos = 0;
    bool deleted = false;
    QString changedBy; // the login of the last change
    QDateTime changedAt;
};

// A message for the person whose value another seat's later save replaced.
struct OutNotice
{
    QString forLogin;
    QString field;
    QString replaced;
    QString kept;
};

// One change of this seat waiting for the server.
// Invariant: `gen` grows with every local change of the record, so an answer
// about an older send never clears a newer change.
struct OutItem
{
    qint64 seq = 0;
    QString id;
    bool removed = false;
    qint64 gen = 0;
    qint64 baseVersion = 0;
    Rec rec; // the record now (not for a removal)
    bool force = false;
    QList<OutNotice> notices;
};

// What the server said to one change.
struct SendResult
{
    enum Status { Accepted, Conflict, Refused };
    Status status = Refused;
    OutItem item;
    ServerRow row;   // the server's record after the write, or the one that stood in its way
    QString message; // why it was refused
};

// A stored file's contents as the server names them.
struct ServerFile
{
    QString company;
    QString name;
    QString sha256;
    qint64 pos = 0;
};

// A notice the server keeps for this login.
struct ServerNotice
{
    qint64 id = 0;
    QString rec;
    QString field;
    QString replaced;
    QString kept;
    QString byLogin;
    QDateTime at;
};

// One change of one field, as the server's history keeps it.
struct HistoryLine
{
    QDateTime at;
    QString login;
    QString field;
    QString oldValue;
    QString newValue;
};

// A server login of a team member, as an owner sees it.
struct LoginInfo
{
    QString login;
    QString member;
    bool disabled = false;
};

Q_DECLARE_METATYPE(ServerRow)
Q_DECLARE_METATYPE(OutItem)
Q_DECLARE_METATYPE(SendResult)
