#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QComboBox;

/// The box with the lines of the project and, below them, what can be done with lines.
///
/// An entry acts when it is chosen in the open list (`QComboBox::activated`). With the list closed
/// the arrow keys go from line to line and reach nothing else; the wheel does nothing, since it may
/// be meant for the page below the pointer.
class LineBox : public QObject
{
    Q_OBJECT

public:
    /// Entries that are no lines, by their item data.
    enum Flow : int { ChangeType = 252, Duplicate = 253, Delete = 254, Add = 255 };

    struct Line
    {
        quint8 number = 0;
        QString label;
    };

    explicit LineBox(QComboBox &box);

    /// Replaces all entries; `current` is shown afterwards, or the first line if it isn't there.
    void fill(const QList<Line> &lines, quint8 current);
    /// Shows a line, if the box has it; nothing is activated.
    void show(quint8 line);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] bool handleKey(int key);

    QComboBox &m_box;
    int m_lineCount = 0; ///< entries of lines; they stand first
};
