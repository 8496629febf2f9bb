#pragma once

#include <QPlainTextEdit>

/// Read-only text in a fixed-width font with line numbers on its left.
class FileViewerText : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit FileViewerText(QWidget *parent = nullptr);

    /// Marks these places besides the cursor's line.
    void setMatches(const QList<QTextCursor> &matches);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    class NumberArea;

    [[nodiscard]] int numberWidth() const;
    void paintNumbers(QPaintEvent *event);
    void placeNumbers();
    void showMarks();

    NumberArea *m_numbers;
    QList<QTextCursor> m_matches;
};
