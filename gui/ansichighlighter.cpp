#include "gui/ansichighlighter.h"

#include <QGuiApplication>
#include <QStringView>

#include <algorithm>
#include <string_view>

using namespace std::string_view_literals;

namespace {

using Token = AnsiCHighlighter::Token;

/// Colours of one kind of token on a light and on a dark ground; each keeps a contrast of 4.5 to 1.
struct TokenColours
{
    QRgb light;
    QRgb dark;
    bool bold;
    bool italic;
};
constexpr std::array<TokenColours, 6> colours{{
    {0xff0b5cad, 0xff6cb6ff, true, false},  // keyword
    {0xff0b6b63, 0xff5fd0c0, false, false}, // type
    {0xff8a3f0c, 0xfff0a868, false, false}, // preprocessor
    {0xff8b1a4f, 0xfff29ac0, false, false}, // string
    {0xff6a3fa0, 0xffc5a3f5, false, false}, // number
    {0xff4d6b2f, 0xff9cc27e, false, true},  // comment
}};

// Sorted, since they are looked up by halving. C23, without what only compilers know.
constexpr std::array keywords{u"_Alignas"sv,
                              u"_Alignof"sv,
                              u"_Atomic"sv,
                              u"_Generic"sv,
                              u"_Noreturn"sv,
                              u"_Static_assert"sv,
                              u"_Thread_local"sv,
                              u"alignas"sv,
                              u"alignof"sv,
                              u"break"sv,
                              u"case"sv,
                              u"const"sv,
                              u"constexpr"sv,
                              u"continue"sv,
                              u"default"sv,
                              u"do"sv,
                              u"else"sv,
                              u"enum"sv,
                              u"extern"sv,
                              u"false"sv,
                              u"for"sv,
                              u"goto"sv,
                              u"if"sv,
                              u"inline"sv,
                              u"nullptr"sv,
                              u"register"sv,
                              u"restrict"sv,
                              u"return"sv,
                              u"sizeof"sv,
                              u"static"sv,
                              u"static_assert"sv,
                              u"struct"sv,
                              u"switch"sv,
                              u"true"sv,
                              u"typedef"sv,
                              u"typeof"sv,
                              u"union"sv,
                              u"void"sv,
                              u"volatile"sv,
                              u"while"sv};
constexpr std::array types{
    u"_Bool"sv,  u"_Complex"sv, u"_Imaginary"sv, u"bool"sv,      u"char"sv,   u"double"sv,
    u"float"sv,  u"int"sv,      u"long"sv,       u"ptrdiff_t"sv, u"short"sv,  u"signed"sv,
    u"size_t"sv, u"ssize_t"sv,  u"uintptr_t"sv,  u"unsigned"sv,  u"wchar_t"sv};
static_assert(std::is_sorted(keywords.begin(), keywords.end()));
static_assert(std::is_sorted(types.begin(), types.end()));

template <size_t count>
bool holds(const std::array<std::u16string_view, count> &words, QStringView word)
{
    return std::binary_search(words.begin(), words.end(),
                              std::u16string_view(word.utf16(), size_t(word.size())));
}

bool isIdentifierStart(QChar c)
{
    return c.isLetter() || c == u'_';
}

bool isIdentifierPart(QChar c)
{
    return isIdentifierStart(c) || c.isDigit();
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// By the habit of C: `uint8_t`, and the stacks' `UNSIGNED8`, `BOOL_T`, `CO_OBJ_T`.
bool isType(QStringView word)
{
    if (holds(types, word))
        return true;
    if (word.size() > 2 && (word.endsWith(u"_t") || word.endsWith(u"_T")))
        return true;
    for (const QStringView base : {QStringView(u"UNSIGNED"), QStringView(u"INTEGER")}) {
        const QStringView bits = word.sliced(qMin(base.size(), word.size()));
        if (word.startsWith(base) && !bits.isEmpty() &&
            std::all_of(bits.begin(), bits.end(), isDigit)) {
            return true;
        }
    }
    return word == u"REAL32" || word == u"REAL64" || word == u"VISIBLE_STRING";
}

/// What reaches from one line into the next, as bits of the block's state.
enum State : int {
    Plain = 0,
    InComment = 1,     ///< between "/*" and "*/"
    InLineComment = 2, ///< "//" behind whose line stands a backslash
    InDirective = 4,
    InString = 8,
};

qsizetype identifierEnd(QStringView text, qsizetype at)
{
    while (at < text.size() && isIdentifierPart(text[at]))
        ++at;
    return at;
}

/// A preprocessing number: everything that C would read as one, right or wrong.
qsizetype numberEnd(QStringView text, qsizetype at)
{
    const auto isSign = [&](qsizetype i) {
        return (text[i] == u'+' || text[i] == u'-') && QStringView(u"eEpP").contains(text[i - 1]);
    };
    const qsizetype begin = at;
    while (at < text.size() &&
           (isIdentifierPart(text[at]) || text[at] == u'.' || (at > begin && isSign(at)))) {
        ++at;
    }
    return at;
}

/// Behind the closing quote; the end of the text if there is none.
qsizetype quotedEnd(QStringView text, qsizetype at, QChar quote)
{
    for (; at < text.size(); ++at) {
        if (text[at] == u'\\')
            ++at;
        else if (text[at] == quote)
            return at + 1;
    }
    return text.size();
}

bool startsNumber(QStringView text, qsizetype at)
{
    const bool isFraction = text[at] == u'.' && at + 1 < text.size() && isDigit(text[at + 1]);
    return isDigit(text[at]) || isFraction;
}

/// Finds the tokens of one line.
class LineScanner
{
public:
    struct Mark
    {
        qsizetype begin;
        qsizetype end;
        Token token;
    };

    LineScanner(QStringView line, int formerState)
        : m_line(line), m_continues(line.endsWith(u'\\')),
          m_inDirective((formerState & InDirective) != 0)
    {
        resume(formerState);
        while (m_at < m_line.size())
            step();
        // A comment may go on inside of a directive, and the directive behind it.
        if (m_inDirective && (m_continues || m_state == InComment))
            m_state |= InDirective;
    }

    [[nodiscard]] const QList<Mark> &marks() const { return m_marks; }
    [[nodiscard]] int state() const { return m_state; }

private:
    void resume(int state)
    {
        if (state & InComment)
            comment(0);
        else if (state & InLineComment)
            lineComment();
        else if (state & InString)
            quoted(0, u'"');
        m_isFirst = !m_inDirective && !(state & InString);
    }

    void step()
    {
        const QChar c = m_line[m_at];
        const QStringView rest = m_line.sliced(m_at);
        // Neither blanks nor comments keep a line from being a directive.
        if (c.isSpace()) {
            ++m_at;
        } else if (rest.startsWith(u"/*")) {
            comment(2);
        } else if (rest.startsWith(u"//")) {
            lineComment();
        } else {
            const bool isDirective = c == u'#' && m_isFirst;
            m_isFirst = false;
            if (isDirective)
                directive();
            else
                code(c);
        }
    }

    void code(QChar c)
    {
        if (c == u'"' || c == u'\'')
            quoted(1, c);
        else if (startsNumber(m_line, m_at))
            mark(numberEnd(m_line, m_at), Token::Number);
        else if (isIdentifierStart(c))
            word();
        else
            ++m_at;
    }

    void word()
    {
        const qsizetype end = identifierEnd(m_line, m_at);
        const QStringView text = m_line.sliced(m_at, end - m_at);
        if (holds(keywords, text))
            mark(end, Token::Keyword);
        else if (isType(text))
            mark(end, Token::Type);
        else if (m_inDirective && text == u"defined")
            mark(end, Token::Preprocessor);
        m_at = end;
    }

    void directive()
    {
        m_inDirective = true;
        qsizetype name = m_at + 1;
        while (name < m_line.size() && m_line[name].isSpace())
            ++name;
        const qsizetype end = identifierEnd(m_line, name);
        mark(end, Token::Preprocessor);
        if (m_line.sliced(name, end - name) != u"include")
            return;
        // A header's name is no comparison.
        while (m_at < m_line.size() && m_line[m_at].isSpace())
            ++m_at;
        if (m_at < m_line.size() && m_line[m_at] == u'<')
            quoted(1, u'>');
    }

    /// `opening`: characters of the comment's begin that stand here.
    void comment(qsizetype opening)
    {
        const qsizetype close = m_line.indexOf(u"*/", m_at + opening);
        m_state = close < 0 ? InComment : Plain;
        mark(close < 0 ? m_line.size() : close + 2, Token::Comment);
    }

    void lineComment()
    {
        m_state = m_continues ? InLineComment : Plain;
        mark(m_line.size(), Token::Comment);
    }

    void quoted(qsizetype opening, QChar quote)
    {
        const qsizetype end = quotedEnd(m_line, m_at + opening, quote);
        const bool closed = end > m_at + opening && m_line[end - 1] == quote;
        m_state = quote == u'"' && m_continues && !closed ? InString : Plain;
        mark(end, Token::String);
    }

    void mark(qsizetype end, Token token)
    {
        m_marks.append({m_at, end, token});
        m_at = end;
    }

    QStringView m_line;
    bool m_continues; ///< a backslash joins the next line to it
    bool m_inDirective;
    bool m_isFirst = true; ///< nothing but blanks and comments so far
    qsizetype m_at = 0;
    int m_state = Plain;
    QList<Mark> m_marks;
};

} // namespace

AnsiCHighlighter::AnsiCHighlighter(QTextDocument *document) : QSyntaxHighlighter(document)
{
    static_assert(colours.size() == tokenCount);
    makeFormats();
    setPalette(QGuiApplication::palette());
}

void AnsiCHighlighter::setPalette(const QPalette &palette)
{
    const bool dark =
        palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
    if (dark == m_dark)
        return;
    m_dark = dark;
    makeFormats();
    rehighlight();
}

void AnsiCHighlighter::makeFormats()
{
    for (size_t i = 0; i < colours.size(); ++i) {
        QTextCharFormat format;
        format.setForeground(QColor::fromRgb(m_dark ? colours[i].dark : colours[i].light));
        if (colours[i].bold)
            format.setFontWeight(QFont::DemiBold);
        format.setFontItalic(colours[i].italic);
        m_formats[i] = format;
    }
}

QTextCharFormat AnsiCHighlighter::format(Token token) const
{
    return m_formats[static_cast<size_t>(token)];
}

void AnsiCHighlighter::highlightBlock(const QString &text)
{
    const LineScanner scanner(text, qMax(0, previousBlockState()));
    for (const LineScanner::Mark &mark : scanner.marks())
        setFormat(int(mark.begin), int(mark.end - mark.begin), format(mark.token));
    setCurrentBlockState(scanner.state());
}
