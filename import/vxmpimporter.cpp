#include "import/vxmpimporter.h"

#include "store/objectdatabase.h"

#include <algorithm>

VXMPImporter::VXMPImporter()
{
    setLine(ObjectDataBase::stagingLine);
}

VXMPImporter::~VXMPImporter()
{
    wait();
}

void VXMPImporter::doImport()
{
    run([this] { copy(); });
}

void VXMPImporter::copy()
{
    if (!store())
        return;
    ObjectDataBase source;
    if (!source.openDataBase(fileName(), true)) {
        const QString reason = source.lastErrorText();
        reportError(reason.isEmpty() ? tr("%1: The project can't be opened.").arg(fileName())
                                     : QStringLiteral("%1: %2").arg(fileName(), reason));
        return;
    }
    if (!source.lineExists(m_sourceLine))
        return;
    const auto bound = [](quint32 index) {
        return static_cast<quint16>(std::min<quint32>(index, 0xFFFF));
    };
    if (!ObjectDataBase::copyLine(*store(), source, m_sourceLine, line(), bound(lowIndex()),
                                  bound(highIndex())))
        reportError(tr("%1: the project refused a part of the import.").arg(fileName()));
}
