#pragma once
#include "emptystate.h"

class DB;
class Nav;
struct ModuleDef;

// Asks for a project for a module that works on one project at a time.
class PickProject : public EmptyState
{
    Q_OBJECT
public:
    PickProject(DB &db, Nav &nav, const ModuleDef &m, QWidget *parent = nullptr);
};
