#include "session/projecttemplate.h"

#include "resources/templates/projecttemplates.h"
#include "store/edition.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>

#include <array>

namespace {

/// Objects of the template that a line without CANopen doesn't have.
constexpr std::array<quint16, 5> canopenOnlyObjects{0x1000, 0x1001, 0x1017, 0x1018, 0x1200};

QString templatePath()
{
    return Edition::isJ1939()
               ? QString(ProjectTemplates::j1939)
               : QCoreApplication::applicationDirPath() + QStringLiteral("/data/mt.data");
}

QString openTemplate(ObjectDataBase &store)
{
    if (store.openDataBase(templatePath(), true))
        return {};
    const QString error = store.lastErrorText();
    // Whatever was open is not part of the new project.
    store.createNewDataBase();
    return error.isEmpty() ? QStringLiteral("%1 is no project.").arg(templatePath()) : error;
}

void setLineZeroType(ObjectDataBase &store, int type)
{
    store.setGeneralSetting(QStringLiteral("line0type"), QString::number(type));
    if (LineType::of(type).hasCANopen)
        return;
    for (const quint16 index : canopenOnlyObjects) {
        if (store.indexExists(0, index))
            store.deleteIndex(0, index);
    }
}

} // namespace

QString ProjectTemplate::fill(ObjectDataBase &store, int lineType)
{
    const QString error = openTemplate(store);
    if (lineType != LineType::Unknown)
        setLineZeroType(store, lineType);
    store.setMiscSetting(QStringLiteral("CreateToolVersion"),
                         QCoreApplication::applicationVersion());
    if (store.getLineType(0) == LineType::Unknown) {
        store.setGeneralSetting(QStringLiteral("line0type"),
                                QString::number(Edition::defaultLineType()));
    }
    noteStructure(store);
    return error;
}

void ProjectTemplate::noteStructure(ObjectDataBase &store)
{
    store.setGeneralSetting(QStringLiteral("new_init_structure"), QStringLiteral("1"));
}
