#include "gui/fileviewertext.h"

#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QTextBlock>

namespace {

constexpr int gap = 8;
constexpr int tabWidth = 4;
constexpr int leastDigits = 3;

} // namespace

class FileViewerText::NumberArea : public QWidget
{
public:
    explicit NumberArea(FileViewerText *text) : QWidget(text), m_text(text) {}

protected:
    void paintEvent(QPaintEvent *event) override { m_text->paintNumbers(event); }

private:
    FileViewerText *m_text;
};

FileViewerText::FileViewerText(QWidget *parent)
    : QPlainTextEdit(parent), m_numbers(new NumberArea(this))
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabStopDistance(tabWidth * fontMetrics().horizontalAdvance(u' '));
    connect(this, &QPlainTextEdit::blockCountChanged, this, &FileViewerText::placeNumbers);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &FileViewerText::showMarks);
    connect(this, &QPlainTextEdit::updateRequest, m_numbers, [this](const QRect &area, int moved) {
        if (moved != 0)
            m_numbers->scroll(0, moved);
        else
            m_numbers->update(0, area.y(), m_numbers->width(), area.height());
    });
    placeNumbers();
}

int FileViewerText::numberWidth() const
{
    const int digits = qMax(leastDigits, int(QString::number(blockCount()).size()));
    return 2 * gap + digits * fontMetrics().horizontalAdvance(u'9');
}

void FileViewerText::placeNumbers()
{
    setViewportMargins(numberWidth(), 0, 0, 0);
    const QRect inside = contentsRect();
    m_numbers->setGeometry(inside.left(), inside.top(), numberWidth(), inside.height());
}

void FileViewerText::paintNumbers(QPaintEvent *event)
{
    QPainter painter(m_numbers);
    painter.fillRect(event->rect(), palette().color(QPalette::Window));
    painter.setFont(font());
    const int current = textCursor().blockNumber();
    const int height = fontMetrics().height();
    QTextBlock block = firstVisibleBlock();
    int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    while (block.isValid() && top <= event->rect().bottom()) {
        const int number = block.blockNumber();
        painter.setPen(
            palette().color(number == current ? QPalette::Text : QPalette::PlaceholderText));
        painter.drawText(0, top, m_numbers->width() - gap, height, Qt::AlignRight,
                         QString::number(number + 1));
        top += qRound(blockBoundingRect(block).height());
        block = block.next();
    }
}

void FileViewerText::setMatches(const QList<QTextCursor> &matches)
{
    m_matches = matches;
    showMarks();
}

void FileViewerText::showMarks()
{
    QTextEdit::ExtraSelection currentLine;
    currentLine.format.setBackground(palette().color(QPalette::AlternateBase));
    currentLine.format.setProperty(QTextFormat::FullWidthSelection, true);
    currentLine.cursor = textCursor();
    currentLine.cursor.clearSelection();
    QList<QTextEdit::ExtraSelection> marks{currentLine};

    QTextCharFormat found;
    QColor ground = palette().color(QPalette::Highlight);
    constexpr int visibleThrough = 70;
    ground.setAlpha(visibleThrough);
    found.setBackground(ground);
    for (const QTextCursor &match : std::as_const(m_matches))
        marks.append({match, found});
    setExtraSelections(marks);
    m_numbers->update();
}

void FileViewerText::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeNumbers();
}

void FileViewerText::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showMarks();
    else if (event->type() == QEvent::FontChange)
        placeNumbers();
}
