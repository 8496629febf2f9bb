#pragma once

#include <QCoreApplication>
#include <QList>

class ObjectDataBase;
class WindowContext;

/// What the line box offers: to go to a line, and to add, duplicate, delete or change one. The user
/// is asked first, and each of it is one undo step.
class LineController
{
    Q_DECLARE_TR_FUNCTIONS(LineController)

public:
    explicit LineController(WindowContext &context);

    /// The standard objects that a new line may take; null for none.
    void setLibrary(ObjectDataBase *library) { m_library = library; }
    /// An entry of the box was chosen: the number of a line, or a `LineBox::Flow`.
    void choose(int entry);
    /// Goes to the line that has come since, as adding it did.
    void showNewLine(const QList<quint8> &formerLines);

private:
    void addLine();
    void duplicateLine();
    void deleteLine();
    void changeType();
    [[nodiscard]] bool mayAdd();
    [[nodiscard]] ObjectDataBase &store() const;

    WindowContext &m_context;
    ObjectDataBase *m_library = nullptr;
};
