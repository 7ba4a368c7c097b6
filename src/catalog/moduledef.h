#pragma once
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include "store/fields.h"

#include <optional>

// A field type: how a field is stored in a record and edited.
// Invariant: `options` is used only by choice, `target` only by ref and refIn.
struct FT
{
    enum Case { choice, ref, refIn, text, longText, money, number, percent, date, time, boolean };
    Case kind = text;
    QStringList options; // choice: the pick list
    QString target;      // ref, refIn: the record kind referred to

    static FT makeChoice(QStringList options) { return {choice, std::move(options), {}}; }
    static FT makeRef(QString kind) { return {ref, {}, std::move(kind)}; }
    static FT makeRefIn(QString kind) { return {refIn, {}, std::move(kind)}; }
    static FT of(Case c) { return {c, {}, {}}; }

    // Equal cases, and for choice, ref and refIn equal payloads too.
    bool operator==(const FT &other) const;
};

// A field definition: the key in Rec::f, the label shown, the type.
struct FD
{
    QString key;
    QString label;
    FT type;
    bool operator==(const FD &) const = default;
};

// One module: one screen of the program over one record kind.
struct ModuleDef
{
    QString id;
    QString title;
    QString symbol;
    QString group;
    QString kind; // empty: the module has no record kind of its own
    bool perProject = false;
    QList<FD> fields;
    QStringList columns;
    std::optional<QString> lineKind;
    QList<FD> lineFields;
    bool numbered = false;
    std::optional<QString> screen; // a special screen instead of the generic one
    QString blurb;
    bool money = false;
    bool ownerOnly = false;
    bool subVisible = false;
    Fields defaults; // fields a new record starts with

    // The field definition of `key` among the fields, or null.
    const FD *field(QStringView key) const;
    // The field definition of `key` among the line fields, or null.
    const FD *lineField(QStringView key) const;
};
