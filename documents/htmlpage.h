#pragma once

#include <QString>

class CodeWriter;
class ObjectDataBase;

/// The frame that all HTML documents share: head with style, head table, table of contents,
/// blocks with tables. The page needs no other file and runs nothing.
///
/// Texts are escaped here; callers hand over plain text. The order of calls is that of the
/// operations below; blocks and rows repeat.
class HtmlPage
{
public:
    struct Title
    {
        QString window;  ///< "... of ", the project's name follows
        QString heading; ///< the same for the heading on the page
        QString project;
        QString toolVersion;
    };

    explicit HtmlPage(CodeWriter &out) : m_out(out) {}

    void begin(const Title &title);
    /// The head table: when the page was made, and what the description settings of the
    /// description line say of the device.
    void writeHeadTable(const Title &title, ObjectDataBase &store);

    /// The list of links beside the page; it begins with the sections of the head table.
    void beginContents();
    void contentsLink(const QString &anchor, const QString &text);
    void endContents();

    void beginBlocks();
    /// A block holds one table; `width` is an attribute value such as "70%" or "600".
    void beginBlock(const char *width);
    /// The title row of a table, which links can point to.
    void blockTitle(const QString &anchor, const QString &title);
    /// A row in bold, as head of a table without a title.
    void headRow(const QString &name, const QString &value);
    /// A row; every second one of a block is shaded. `name` as it stands, `value` may have lines.
    void row(const char *name, const QString &value);
    void endBlock();
    /// The line between two groups of blocks.
    void rule();
    void end();

    /// Plain text as HTML: markup characters are escaped, line ends become breaks, controls that
    /// HTML forbids are dropped.
    [[nodiscard]] static QString escaped(const QString &text);
    /// Plain text as content of a comment in HTML or XML, which nothing in it can end.
    [[nodiscard]] static QString commentText(const QString &text);

private:
    void headSection(const char *anchor, const char *title);
    void headTableRow(const char *name, const QString &value);

    CodeWriter &m_out;
    bool m_shaded = false;
};
