#include "app/startoptions.h"
#include "app/vxmmainwindow.h"
#include "gui/guihelper.h"
#include "resources/codb/standardprofiles.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 staging = ObjectDataBase::stagingLine;

/// One window with its stores, as the start sequence makes them.
struct Session
{
    Session()
    {
        store->createNewDataBase();
        store->addNode(0, ObjectDataBase::NODE_DATA_T());
        library->createNewDataBase();
        window.setDatabase(store);
        window.setLibraryDatabase(library);
        window.selectLine(0);
    }

    std::shared_ptr<ObjectDataBase> store = std::make_shared<ObjectDataBase>();
    std::shared_ptr<ObjectDataBase> library = std::make_shared<ObjectDataBase>();
    VxmMainWindow window{StartOptions::parse({u"program"_s})};
};

} // namespace

/// The standard objects that the program reads at its start.
class TestLibrary : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { StandardProfiles::makeAvailable(); }

    void fillsTheStagingLineOnly();
    void laterLoadTakesTheFormersPlace();
    void missingProfileIsTold();
    void windowMayCloseMeanwhile();
};

void TestLibrary::fillsTheStagingLineOnly()
{
    Session session;
    const bool modified = session.window.isModified();
    QSignalSpy ready(&session.window, &VxmMainWindow::standardObjectsReady);
    session.window.loadLibrary(StandardProfiles::communication);
    QTRY_COMPARE(ready.size(), 1);
    const QList<quint16> indices = session.library->getIndices(staging);
    QVERIFY(indices.size() > 40);
    QVERIFY(indices.first() == 0x1000 && indices.last() <= 0x1FFF);
    // Only what is listed: the copies would make the list of objects on offer endless.
    QVERIFY(!session.library->indexExists(staging, 0x1202));
    QCOMPARE(session.store->getIndices(0), QList<quint16>());
    QCOMPARE(session.window.isModified(), modified);
}

void TestLibrary::laterLoadTakesTheFormersPlace()
{
    Session session;
    QSignalSpy ready(&session.window, &VxmMainWindow::standardObjectsReady);
    session.window.loadLibrary(StandardProfiles::communication);
    session.window.loadLibrary(StandardProfiles::additional);
    QTRY_VERIFY(!ready.isEmpty());
    QVERIFY(session.library->indexExists(staging, 0x1F80));
    QVERIFY(!session.library->indexExists(staging, 0x1000));
}

void TestLibrary::missingProfileIsTold()
{
    Session session;
    QSignalSpy ready(&session.window, &VxmMainWindow::standardObjectsReady);
    session.window.loadLibrary(u":/codb/none.codb"_s);
    QTRY_COMPARE(ready.size(), 1);
    QCOMPARE(session.library->getIndices(staging), QList<quint16>());
    QVERIFY(GuiHelper::takeShownBoxes().isEmpty());
}

void TestLibrary::windowMayCloseMeanwhile()
{
    for (int turn = 0; turn < 10; ++turn) {
        Session session;
        session.window.loadLibrary(StandardProfiles::communication);
        QTest::qWait(turn);
    }
}

QTEST_MAIN(TestLibrary)
#include "tst_library.moc"
