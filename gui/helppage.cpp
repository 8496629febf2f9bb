#include "gui/helppage.h"

#include <QFile>
#include <QFontDatabase>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>

#include <algorithm>

namespace {

constexpr int pageMargin = 20;
constexpr int smallGap = 4;
constexpr int gap = 8;
constexpr int wideGap = 20;
constexpr int linePercent = 125;

bool isCode(const QTextBlock &block)
{
    return block.blockFormat().hasProperty(QTextFormat::BlockCodeFence) ||
           block.blockFormat().hasProperty(QTextFormat::BlockCodeLanguage);
}

void setSpacing(QTextBlock &block, const QPalette &palette)
{
    QTextBlockFormat format = block.blockFormat();
    const bool inTable = QTextCursor(block).currentTable() != nullptr;
    const bool nextIsCode = isCode(block) && isCode(block.next());
    if (format.headingLevel() > 0) {
        format.setTopMargin(format.headingLevel() == 1 ? gap : wideGap);
        format.setBottomMargin(gap);
    } else if (inTable || nextIsCode) {
        format.setTopMargin(0);
        format.setBottomMargin(0);
    } else {
        format.setTopMargin(0);
        const bool listGoesOn = block.textList() != nullptr && block.next().textList() != nullptr;
        format.setBottomMargin(listGoesOn ? smallGap : gap);
    }
    if (isCode(block)) {
        format.setBackground(palette.color(QPalette::AlternateBase));
        format.setLeftMargin(gap);
    } else {
        format.setLineHeight(linePercent, QTextBlockFormat::ProportionalHeight);
    }
    QTextCursor(block).setBlockFormat(format);
}

/// Code in lines and in texts alike.
void setCodeFont(const QTextBlock &block, const QPalette &palette)
{
    const QStringList family{QFontDatabase::systemFont(QFontDatabase::FixedFont).family()};
    struct Piece
    {
        int begin;
        int end;
    };
    QList<Piece> pieces;
    for (auto at = block.begin(); !at.atEnd(); ++at) {
        const QTextFragment fragment = at.fragment();
        if (fragment.charFormat().fontFixedPitch() && !fragment.charFormat().isAnchor())
            pieces.append({fragment.position(), fragment.position() + fragment.length()});
    }
    for (const Piece &piece : std::as_const(pieces)) {
        QTextCursor cursor(block);
        cursor.setPosition(piece.begin);
        cursor.setPosition(piece.end, QTextCursor::KeepAnchor);
        QTextCharFormat format;
        format.setFontFamilies(family);
        if (!isCode(block))
            format.setBackground(palette.color(QPalette::AlternateBase));
        cursor.mergeCharFormat(format);
    }
}

void setTableLook(QTextTable &table, const QPalette &palette)
{
    QTextTableFormat format = table.format();
    format.setBorder(1);
    format.setBorderCollapse(true);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setBorderBrush(palette.color(QPalette::Mid));
    format.setCellPadding(smallGap + 1);
    format.setCellSpacing(0);
    format.setBottomMargin(wideGap / 2);
    table.setFormat(format);
    for (int column = 0; column < table.columns(); ++column) {
        QTextTableCell cell = table.cellAt(0, column);
        QTextTableCellFormat head = cell.format().toTableCellFormat();
        head.setBackground(palette.color(QPalette::Button));
        cell.setFormat(head);
    }
}

void setLinkColour(const QTextBlock &block, const QPalette &palette)
{
    QList<QPair<int, int>> pieces;
    for (auto at = block.begin(); !at.atEnd(); ++at) {
        if (at.fragment().charFormat().isAnchor())
            pieces.append({at.fragment().position(), at.fragment().length()});
    }
    for (const auto &[begin, length] : std::as_const(pieces)) {
        QTextCursor cursor(block);
        cursor.setPosition(begin);
        cursor.setPosition(begin + length, QTextCursor::KeepAnchor);
        QTextCharFormat format;
        format.setForeground(palette.color(QPalette::Link));
        cursor.mergeCharFormat(format);
    }
}

} // namespace

HelpPage::HelpPage(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    m_markdown = QString::fromUtf8(file.readAll());
    const QString mark = QStringLiteral("# ");
    for (const QString &line : m_markdown.split(u'\n')) {
        if (line.startsWith(mark)) {
            m_title = line.mid(mark.size()).trimmed();
            break;
        }
    }
}

bool HelpPage::contains(const QStringList &words) const
{
    return std::all_of(words.begin(), words.end(), [this](const QString &word) {
        return m_markdown.contains(word, Qt::CaseInsensitive);
    });
}

void HelpPage::show(QTextDocument &document, const QPalette &palette) const
{
    document.setUndoRedoEnabled(false);
    document.setMarkdown(m_markdown, QTextDocument::MarkdownDialectGitHub);
    document.setDocumentMargin(pageMargin);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        setSpacing(block, palette);
        setCodeFont(block, palette);
        setLinkColour(block, palette);
    }
    for (QTextFrame *frame : document.rootFrame()->childFrames()) {
        if (auto *table = qobject_cast<QTextTable *>(frame))
            setTableLook(*table, palette);
    }
}

QString HelpPage::anchorOf(const QString &heading)
{
    QString anchor;
    for (const QChar c : heading.trimmed().toLower()) {
        if (c.isLetterOrNumber() || c == u'-' || c == u'_')
            anchor += c;
        else if (c.isSpace())
            anchor += u'-';
    }
    return anchor;
}

int HelpPage::positionOf(const QTextDocument &document, const QString &anchor)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && anchorOf(block.text()) == anchor)
            return block.position();
    }
    return -1;
}
