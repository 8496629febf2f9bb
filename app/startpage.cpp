#include "app/startpage.h"

#include "gui/lineicon.h"

#include <QAbstractButton>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int gap = 8;
constexpr int signSize = 20;
constexpr int pageMargin = 24;
constexpr int columnGap = 48;
/// Wider lines are hard to follow from the name to its date.
constexpr int widestPage = 1040;

/// One offer: an icon, a title with a remark at the right, and a line that tells more.
class OfferRow : public QAbstractButton
{
public:
    struct Words
    {
        QString icon;
        QString title;
        QString detail = {};
        QString remark = {};
    };

    OfferRow(const Words &words, QWidget *parent)
        : QAbstractButton(parent), m_detail(words.detail), m_remark(words.remark)
    {
        setText(words.title);
        setIcon(LineIcon::icon(words.icon));
        setToolTip(words.detail);
        setAccessibleName(words.title);
        setAccessibleDescription(QStringList{words.detail, words.remark}.join(u' ').trimmed());
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setCursor(Qt::PointingHandCursor);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override
    {
        const int lines = m_detail.isEmpty() ? 1 : 2;
        return {signSize + 12 * gap, qMax(signSize, lines * fontMetrics().height()) + gap + 4};
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            click();
        else
            QAbstractButton::keyPressEvent(event);
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const bool lit = isEnabled() && (underMouse() || hasFocus());
        if (lit)
            painter.fillRect(rect(), palette().color(QPalette::AlternateBase));
        if (hasFocus()) {
            painter.setPen(palette().color(QPalette::Highlight));
            painter.drawRect(rect().adjusted(0, 0, -1, -1));
        }
        const QRect content = rect().adjusted(gap, gap / 2 + 2, -gap, -gap / 2 - 2);
        icon().paint(&painter, QRect(content.topLeft(), QSize(signSize, signSize)), Qt::AlignCenter,
                     isEnabled() ? QIcon::Normal : QIcon::Disabled);
        const QRect words = content.adjusted(signSize + gap, 0, 0, 0);
        const QColor quiet = palette().color(lit ? QPalette::Text : QPalette::PlaceholderText);
        drawTitle(painter, words, quiet);
        if (m_detail.isEmpty())
            return;
        painter.setPen(quiet);
        painter.drawText(words, Qt::AlignLeft | Qt::AlignBottom,
                         fontMetrics().elidedText(m_detail, Qt::ElideMiddle, words.width()));
    }

private:
    void drawTitle(QPainter &painter, const QRect &words, const QColor &quiet) const
    {
        const QFontMetrics metrics = fontMetrics();
        const int remarkWidth =
            m_remark.isEmpty() ? 0 : metrics.horizontalAdvance(m_remark) + 2 * gap;
        const QRect line(words.topLeft(), QSize(words.width(), qMax(signSize, metrics.height())));
        const Qt::Alignment vertical = m_detail.isEmpty() ? Qt::AlignVCenter : Qt::AlignTop;
        painter.setPen(quiet);
        painter.drawText(line, Qt::AlignRight | vertical, m_remark);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(line, Qt::AlignLeft | vertical,
                         metrics.elidedText(text(), Qt::ElideRight, line.width() - remarkWidth));
    }

    QString m_detail;
    QString m_remark;
};

QLabel *heading(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    label->setFont(font);
    label->setForegroundRole(QPalette::Text);
    return label;
}

QVBoxLayout *makeColumn()
{
    auto *column = new QVBoxLayout;
    column->setSpacing(0);
    return column;
}

/// A row may ask for what makes the page anew, so it stays until its click is over.
void clear(QVBoxLayout &rows)
{
    while (QLayoutItem *item = rows.takeAt(0)) {
        if (item->widget() != nullptr) {
            item->widget()->hide();
            item->widget()->deleteLater();
        }
        delete item;
    }
}

QString timeText(qint64 time)
{
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(time), QLocale::ShortFormat);
}

} // namespace

StartPage::StartPage(QWidget *parent)
    : QScrollArea(parent), m_examples(makeColumn()), m_recent(makeColumn())
{
    setObjectName(QStringLiteral("startPage"));
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    auto *page = new QWidget(this);
    page->setBackgroundRole(QPalette::Base);
    page->setAutoFillBackground(true);
    viewport()->setBackgroundRole(QPalette::Base);

    QVBoxLayout *offers = makeColumn();
    makeStartRows(*offers);
    offers->addSpacing(pageMargin);
    offers->addWidget(heading(tr("Examples"), page));
    offers->addSpacing(gap);
    offers->addLayout(m_examples);
    offers->addStretch(1);
    QVBoxLayout *recent = makeColumn();
    recent->addWidget(heading(tr("Recent projects"), page));
    recent->addSpacing(gap);
    recent->addLayout(m_recent);
    recent->addStretch(1);

    auto *columns = new QHBoxLayout;
    columns->setSpacing(columnGap);
    columns->addLayout(offers, 2);
    columns->addLayout(recent, 3);
    auto *content = new QWidget(page);
    content->setMaximumWidth(widestPage);
    content->setLayout(columns);
    columns->setContentsMargins(0, 0, 0, 0);
    auto *centred = new QHBoxLayout(page);
    centred->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    centred->addWidget(content, 1);
    centred->addStretch();
    setWidget(page);
    setRecent({});
}

void StartPage::makeStartRows(QVBoxLayout &column)
{
    column.addWidget(heading(tr("Start"), this));
    column.addSpacing(gap);
    auto *fresh = new OfferRow({.icon = QStringLiteral("new"),
                                .title = tr("New project"),
                                .detail = tr("Begins again from the template")},
                               this);
    fresh->setObjectName(QStringLiteral("startNew"));
    connect(fresh, &QAbstractButton::clicked, this, &StartPage::newRequested);
    column.addWidget(fresh);
    auto *open = new OfferRow({.icon = QStringLiteral("open"),
                               .title = tr("Open project..."),
                               .detail = tr("Or drop its file onto this window")},
                              this);
    open->setObjectName(QStringLiteral("startOpen"));
    connect(open, &QAbstractButton::clicked, this, &StartPage::openRequested);
    column.addWidget(open);
    setFocusProxy(fresh);
}

void StartPage::setExamples(const QList<ExampleProjects::Example> &examples)
{
    clear(*m_examples);
    for (const ExampleProjects::Example &example : examples) {
        auto *row = new OfferRow({.icon = QStringLiteral("examples"),
                                  .title = example.label,
                                  .detail = tr("Opens a copy in a folder that you choose")},
                                 widget());
        row->setObjectName(QStringLiteral("startExample"));
        connect(row, &QAbstractButton::clicked, this,
                [this, path = example.path] { emit exampleRequested(path); });
        m_examples->addWidget(row);
    }
}

void StartPage::setRecent(const QList<RecentProjects::Entry> &projects)
{
    clear(*m_recent);
    for (const RecentProjects::Entry &project : projects) {
        const QFileInfo file(project.path);
        const bool isThere = file.isFile();
        auto *row = new OfferRow({.icon = QStringLiteral("recent"),
                                  .title = file.fileName(),
                                  .detail = QDir::toNativeSeparators(project.path),
                                  .remark = isThere ? timeText(project.time) : tr("not found")},
                                 widget());
        row->setObjectName(QStringLiteral("startRecent"));
        row->setEnabled(isThere);
        connect(row, &QAbstractButton::clicked, this,
                [this, path = project.path] { emit recentRequested(path); });
        m_recent->addWidget(row);
    }
    if (projects.isEmpty()) {
        auto *hint = new QLabel(tr("Projects that you open or save appear here."), widget());
        hint->setForegroundRole(QPalette::PlaceholderText);
        hint->setWordWrap(true);
        m_recent->addWidget(hint);
    }
}
