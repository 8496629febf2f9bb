#include "app/linebox.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <array>

namespace {

struct FlowEntry
{
    LineBox::Flow flow;
    const char *label;
};
constexpr std::array flowEntries{
    FlowEntry{LineBox::Add, "Add empty line"},
    FlowEntry{LineBox::Duplicate, "Duplicate last line"},
    FlowEntry{LineBox::Delete, "Delete last line"},
    FlowEntry{LineBox::ChangeType, "Change Line Type"},
};

} // namespace

LineBox::LineBox(QComboBox &box) : QObject(&box), m_box(box)
{
    box.installEventFilter(this);
}

void LineBox::fill(const QList<Line> &lines, quint8 current)
{
    const QSignalBlocker blocker(m_box);
    m_box.clear();
    for (const Line &line : lines)
        m_box.addItem(line.label, line.number);
    m_lineCount = int(lines.size());
    m_box.insertSeparator(m_box.count());
    for (const FlowEntry &entry : flowEntries)
        m_box.addItem(QString::fromLatin1(entry.label), int(entry.flow));
    m_box.setCurrentIndex(qMax(0, m_box.findData(current)));
}

void LineBox::show(quint8 line)
{
    const int row = m_box.findData(line);
    if (row >= 0)
        m_box.setCurrentIndex(row);
}

bool LineBox::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        event->ignore();
        return true;
    case QEvent::KeyPress: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers().testFlag(Qt::AltModifier) || !handleKey(key->key()))
            break;
        event->accept();
        return true;
    }
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// False for keys that are not ours, such as those that open the list.
bool LineBox::handleKey(int key)
{
    const int last = m_lineCount - 1;
    int row = m_box.currentIndex();
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Left:
        --row;
        break;
    case Qt::Key_Down:
    case Qt::Key_Right:
        ++row;
        break;
    case Qt::Key_Home:
    case Qt::Key_PageUp:
        row = 0;
        break;
    case Qt::Key_End:
    case Qt::Key_PageDown:
        row = last;
        break;
    default:
        // A letter would choose the next entry that begins with it.
        return key > Qt::Key_Space && key <= Qt::Key_ydiaeresis;
    }
    row = std::clamp(row, 0, qMax(0, last));
    if (row != m_box.currentIndex()) {
        m_box.setCurrentIndex(row);
        emit m_box.activated(row);
    }
    return true;
}
