#include "gui/manualhandler.h"

#include "resources/manual/manualpages.h"

#include <QApplication>
#include <QKeyEvent>

#include <array>

namespace {

/// Which page explains a form or dialog, by its class.
struct FormPage
{
    const char *className;
    const char *page;
};
constexpr std::array formPages{
    FormPage{"GeneratorOutputForm", "generator-output.md"},
    FormPage{"IndexForm", "object-panes.md"},
    FormPage{"SubIndexForm", "object-panes.md"},
    FormPage{"MetaDataInputDialog", "object-panes.md"},
    FormPage{"ObjectDictionaryForm", "object-dictionary.md"},
    FormPage{"ManufacturerSegmentForm", "object-dictionary.md"},
    FormPage{"SelectSubindexDialog", "object-dictionary.md"},
    FormPage{"SelectProtocolDialog", "lines.md"},
    FormPage{"FileViewerDialog", "viewer.md"},
    FormPage{"FileImportDialog", "import.md"},
    FormPage{"IndexDestinationDialog", "import.md"},
    FormPage{"SubSelectDialog", "import.md"},
};

QString firstPage()
{
    return ManualHandler::chapters().constFirst().files.constFirst();
}

} // namespace

ManualHandler::ManualHandler(QWidget *window) : QObject(window), m_window(window)
{
    ManualPages::makeAvailable();
    QCoreApplication::instance()->installEventFilter(this);
}

QString ManualHandler::folder()
{
    return QStringLiteral(":/manual/");
}

QList<HelpViewerDialog::Chapter> ManualHandler::chapters()
{
    return {
        {tr("Start"),
         {QStringLiteral("first-project.md"), QStringLiteral("main-window.md"),
          QStringLiteral("keyboard.md")}},
        {tr("Pages"),
         {QStringLiteral("object-dictionary.md"), QStringLiteral("object-panes.md"),
          QStringLiteral("generator-output.md")}},
        {tr("Tasks"),
         {QStringLiteral("lines.md"), QStringLiteral("import.md"), QStringLiteral("saving.md"),
          QStringLiteral("viewer.md"), QStringLiteral("updates.md")}},
        {tr("Reference"),
         {QStringLiteral("command-line.md"), QStringLiteral("cli.md"),
          QStringLiteral("profiles.md"), QStringLiteral("generated-files.md"),
          QStringLiteral("generated-code.md"), QStringLiteral("checks.md"),
          QStringLiteral("formats.md"), QStringLiteral("changelog.md")}},
    };
}

QString ManualHandler::pageFor(const QObject *widget)
{
    for (const QObject *at = widget; at != nullptr; at = at->parent()) {
        for (const FormPage &row : formPages) {
            if (at->inherits(row.className))
                return QString::fromLatin1(row.page);
        }
    }
    return {};
}

void ManualHandler::openManual()
{
    show(firstPage());
}

void ManualHandler::openChangelog()
{
    show(QStringLiteral("changelog.md"));
}

void ManualHandler::openForFront(const QWidget *form)
{
    QString page = pageFor(QApplication::focusWidget());
    if (page.isEmpty())
        page = pageFor(form);
    show(page.isEmpty() ? firstPage() : page);
}

HelpViewerDialog *ManualHandler::viewer() const
{
    return m_window->findChild<HelpViewerDialog *>(QString(), Qt::FindDirectChildrenOnly);
}

/// A modal dialog would block a window that is not its own, and ends with its own.
void ManualHandler::show(const QString &file)
{
    QWidget *modal = QApplication::activeModalWidget();
    QWidget *owner = modal != nullptr ? modal : m_window;
    auto *viewer = owner->findChild<HelpViewerDialog *>(QString(), Qt::FindDirectChildrenOnly);
    if (viewer == nullptr)
        viewer = new HelpViewerDialog(folder(), chapters(), owner); // child of its owner
    viewer->clearSearch();                                          // it was for another question
    viewer->showPage(file);
    if (viewer->isMinimized())
        viewer->showNormal();
    viewer->show();
    viewer->raise();
    viewer->activateWindow();
}

bool ManualHandler::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || QApplication::activeModalWidget() == nullptr)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier || !watched->isWidgetType())
        return false;
    openForFront();
    return true;
}
