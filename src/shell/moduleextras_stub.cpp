// Until the extras, lines and photos are built, the editor shows the fields alone.
#include "moduleextras.h"

QWidget *makeModuleExtras(DB &, Nav &, const ModuleDef &, const QString &, QWidget *)
{
    return nullptr;
}

QWidget *makeLinesEditor(DB &, Nav &, const ModuleDef &, const QString &, QWidget *)
{
    return nullptr;
}

QWidget *makeModuleExtrasAfterLines(DB &, Nav &, const ModuleDef &, const QString &, QWidget *)
{
    return nullptr;
}

QWidget *makePhotoStrip(DB &, const QString &, QWidget *)
{
    return nullptr;
}
