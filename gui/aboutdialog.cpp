#include "gui/aboutdialog.h"

#include "gui/editionicon.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSysInfo>
#include <QVBoxLayout>

namespace {

constexpr int iconSize = 64;
constexpr int wideGap = 16;
constexpr double titleScale = 1.4;

QLabel *makeText(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard |
                                   Qt::LinksAccessibleByMouse);
    return label;
}

} // namespace

AboutDialog::AboutDialog(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(tr("About %1").arg(QCoreApplication::applicationName()));
    auto *icon = new QLabel(this);
    icon->setPixmap(EditionIcon::icon(QCoreApplication::applicationName())
                        .pixmap(QSize(iconSize, iconSize), devicePixelRatio()));

    auto *name = new QLabel(QCoreApplication::applicationName(), this);
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * titleScale);
    font.setWeight(QFont::DemiBold);
    name->setFont(font);
    auto *version = makeText(details(), this);
    version->setObjectName(QStringLiteral("aboutDetails"));
    auto *purpose = makeText(tr("Design tool for embedded devices that talk on CAN."), this);
    auto *credits =
        makeText(tr("Made with Qt, which is used under the GNU Lesser General Public License, "
                    "version 3, and with SQLite, which is in the public domain."),
                 this);

    auto *text = new QVBoxLayout;
    text->setSpacing(wideGap / 2);
    text->addWidget(name);
    text->addWidget(purpose);
    text->addWidget(version);
    text->addWidget(credits);
    auto *row = new QHBoxLayout;
    row->setSpacing(wideGap);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(text, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton *copy = buttons->addButton(tr("C&opy"), QDialogButtonBox::ActionRole);
    copy->setToolTip(tr("Copies the versions, as a report of a fault should name them"));
    connect(copy, &QPushButton::clicked, this,
            [] { QGuiApplication::clipboard()->setText(AboutDialog::details()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    buttons->button(QDialogButtonBox::Close)->setFocus();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(wideGap, wideGap, wideGap, wideGap);
    layout->setSpacing(wideGap);
    layout->addLayout(row);
    layout->addStretch();
    layout->addWidget(buttons);
    constexpr int width = 460;
    setMinimumWidth(width);
    // What wraps is asked for its height in a narrower dialog otherwise.
    resize(width, layout->totalHeightForWidth(width));
}

QString AboutDialog::details()
{
    return QStringList{
        tr("%1, version %2")
            .arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()),
        tr("Qt %1, built with Qt %2")
            .arg(QString::fromLatin1(qVersion()), QStringLiteral(QT_VERSION_STR)),
        tr("%1, %2").arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture()),
    }
        .join(u'\n');
}
