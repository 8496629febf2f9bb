#pragma once

#include "generation/generatormainhandler.h"

#include <QObject>
#include <QPointer>

#include <memory>

class GUIPostGenProgressHandler;
class GeneratorOutputForm;
class OutputHandlerBase;
class QProgressDialog;
class WindowContext;

/// A generation run from the window: progress, what is said of it, and the corrections that it has
/// made to the project. Nothing else can be started meanwhile.
class GenerationController : public QObject
{
    Q_OBJECT

public:
    /// What is said goes to `outputForm`, and to the build log of a run that nobody watches.
    GenerationController(WindowContext &context, GeneratorOutputForm &outputForm);
    ~GenerationController() override;

    /// The program was started to generate: corrections of the project are not saved by the way.
    void setAutomatic() { m_automatic = true; }
    /// Pending input is stored and the output page in front.
    void run();

    void showProgress(quint8 percent);
    void finish(GeneratorMainHandler::GeneratorResult result);
    void takeCorrections();

signals:
    void instrumentFunctions(bool enable);
    void progressed(quint8 percent);
    void finished(GeneratorMainHandler::GeneratorResult result);
    void corrected();
    void saveWanted();
    /// The pages have not heard of what has changed.
    void reloadWanted();

private:
    void makeOutputHandler();
    void makeProgressDialog();
    void generate();

    WindowContext &m_context;
    GeneratorOutputForm &m_outputForm;
    std::shared_ptr<GUIPostGenProgressHandler> m_postGenProgress;
    std::unique_ptr<GeneratorMainHandler> m_generator;
    OutputHandlerBase *m_outputHandler = nullptr; ///< child of the generator
    QPointer<QProgressDialog> m_progress;
    bool m_automatic = false;
};
