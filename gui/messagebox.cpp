#include "gui/messagebox.h"

#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QRegularExpression>
#include <QScreen>

namespace {

/// Usual width of the text of a box.
constexpr int textWidth = 440;
constexpr int screenMargin = 40;
/// What stands beside the text of a box: the sign and the margins.
constexpr int besideText = 120;
/// A path's names have few blanks; what comes later is the rest of the sentence.
constexpr qsizetype wordsOfPath = 5;

bool beginsPath(const QString &word)
{
    static const QRegularExpression pattern(
        QStringLiteral("^[\"'(]?(?:[A-Za-z]:|~|\\.{1,2})?[\\\\/][^\\\\/]"));
    return pattern.match(word).hasMatch();
}

bool endsFileName(const QString &word)
{
    static const QRegularExpression pattern(QStringLiteral("\\.\\w{1,5}[\"')]*[.,:;!?]?$"));
    return pattern.match(word).hasMatch();
}

bool hasSeparator(const QString &word)
{
    return word.contains(u'/') || word.contains(u'\\');
}

/// The last word of the path that begins at `begin`.
qsizetype endOfPath(const QStringList &words, qsizetype begin)
{
    qsizetype end = begin;
    for (qsizetype i = begin + 1; i < words.size() && i < begin + wordsOfPath; ++i) {
        if (endsFileName(words[end]) || beginsPath(words[i]))
            break;
        if (hasSeparator(words[i]) || endsFileName(words[i]))
            end = i;
    }
    return end;
}

/// The words of a line; a path with blanks is one of them.
QStringList unbreakable(const QString &line)
{
    const QStringList words = line.split(u' ');
    QStringList result;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const qsizetype end = beginsPath(words[i]) ? endOfPath(words, i) : i;
        result.append(words.mid(i, end - i + 1).join(u' '));
        i = end;
    }
    return result;
}

bool hasPath(const QString &text)
{
    static const QRegularExpression blank(QStringLiteral("\\s"));
    const QStringList words = text.split(blank);
    return std::any_of(words.begin(), words.end(), beginsPath);
}

} // namespace

QString MessageBox::wrapped(const QString &text, int width,
                            const std::function<int(const QString &)> &widthOf)
{
    if (!hasPath(text))
        return text;
    QStringList lines;
    for (const QString &paragraph : text.split(u'\n')) {
        QString line;
        bool isFirst = true;
        for (const QString &word : unbreakable(paragraph)) {
            const QString longer = isFirst ? word : line + u' ' + word;
            if (!isFirst && widthOf(longer) > width) {
                lines.append(line);
                line = word;
            } else {
                line = longer;
            }
            isFirst = false;
        }
        lines.append(line);
    }
    return lines.join(u'\n');
}

void MessageBox::setTexts(const QString &text, const QString &informativeText)
{
    setText(text);
    setInformativeText(informativeText);
    setWhole("qt_msgbox_label", text);
    setWhole("qt_msgbox_informativelabel", informativeText);
}

/// A label breaks lines behind every stroke of a path. One that is as wide as its lines has
/// nothing to break.
void MessageBox::setWhole(const char *name, const QString &text)
{
    auto *label = findChild<QLabel *>(QLatin1String(name));
    if (label == nullptr || Qt::mightBeRichText(text) || !hasPath(text))
        return;
    const QFontMetrics metrics = label->fontMetrics();
    label->setTextFormat(Qt::PlainText);
    label->setText(wrapped(text, textWidth, [&metrics](const QString &line) {
        return metrics.horizontalAdvance(line);
    }));
    const bool wraps = label->wordWrap();
    label->setWordWrap(false);
    const int width = label->sizeHint().width();
    label->setWordWrap(wraps);
    // What fits on no screen has to break after all.
    if (width + besideText < screen()->availableGeometry().width() - screenMargin)
        label->setMinimumWidth(width);
}

bool MessageBox::event(QEvent *event)
{
    const bool result = QMessageBox::event(event);
    // The base fixes its size at these events.
    if (event->type() == QEvent::Show || event->type() == QEvent::LayoutRequest ||
        event->type() == QEvent::FontChange) {
        fitWidth();
    }
    return result;
}

void MessageBox::fitWidth()
{
    const int widest = screen()->availableGeometry().width() - screenMargin;
    const int wanted = qMax(leastWidth, layout()->totalMinimumSize().width());
    const int fitting = qMax(width(), qMin(wanted, widest));
    if (fitting == width())
        return;
    const int height = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(fitting)
                                                     : layout()->totalMinimumSize().height();
    setFixedSize(fitting, height);
}
