// The library of standard objects: filled from a profile database while the window is at work.

#include "app/vxmmainwindow.h"
#include "canopen/objectranges.h"

#include "import/codbimporter.h"

namespace {

constexpr quint8 complete = 100;

} // namespace

void VxmMainWindow::loadLibrary(const QString &profile)
{
    // A load that is still going on ends first.
    m_libraryImporter.reset();
    if (m_library == nullptr)
        return;
    constexpr quint8 line = ObjectDataBase::stagingLine;
    if (m_library->lineExists(line))
        m_library->deleteNode(line);
    m_library->addNode(line, ObjectDataBase::NODE_DATA_T());

    m_libraryImporter = std::make_unique<CODBImporter>();
    // What a former load has sent may still be on its way when this one has begun.
    connect(m_libraryImporter.get(), &CODBImporter::progress, this,
            [this, sender = QPointer(m_libraryImporter.get())](quint8 percent) {
                if (sender != nullptr)
                    importPogress(percent);
            });
    m_libraryImporter->setLine(line);
    m_libraryImporter->setDatabase(m_library.get());
    m_libraryImporter->setRange(ObjectRanges::communication.low, ObjectRanges::communication.high);
    m_libraryImporter->setFile(profile);
    m_libraryImporter->start();
}

void VxmMainWindow::importPogress(quint8 percent)
{
    if (percent < complete)
        return;
    if (m_libraryImporter != nullptr && !m_libraryImporter->errorString().isEmpty())
        handleCheckError(m_libraryImporter->errorString());
    emit standardObjectsReady();
}
