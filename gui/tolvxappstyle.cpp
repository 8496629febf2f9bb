#include "gui/tolvxappstyle.h"

#include "gui/lineicon.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleHints>
#include <QStyleOptionToolBox>

#include <array>
#include <utility>

namespace {

/// One role's colours in either scheme, for widgets in use and for disabled ones.
struct RoleColours
{
    QPalette::ColorRole role;
    QRgb light;
    QRgb lightDisabled;
    QRgb dark;
    QRgb darkDisabled;
};

constexpr std::array<RoleColours, 18> roleTable{{
    {QPalette::Window, 0xfff4f6f8, 0xfff4f6f8, 0xff23272c, 0xff23272c},
    {QPalette::WindowText, 0xff1d242b, 0xff8b949c, 0xffe4e8ec, 0xff7d868f},
    {QPalette::Base, 0xffffffff, 0xfff4f6f8, 0xff1a1d21, 0xff23272c},
    {QPalette::AlternateBase, 0xfff0f3f6, 0xfff4f6f8, 0xff202429, 0xff23272c},
    {QPalette::ToolTipBase, 0xfffffbe8, 0xfffffbe8, 0xff343a41, 0xff343a41},
    {QPalette::ToolTipText, 0xff1d242b, 0xff1d242b, 0xffe4e8ec, 0xffe4e8ec},
    {QPalette::PlaceholderText, 0xff6b757e, 0xffa3abb2, 0xff929ba4, 0xff656d75},
    {QPalette::Text, 0xff1d242b, 0xff8b949c, 0xffe4e8ec, 0xff7d868f},
    {QPalette::Button, 0xffe9edf1, 0xffeef1f4, 0xff2e343a, 0xff292e33},
    {QPalette::ButtonText, 0xff1d242b, 0xff8b949c, 0xffe4e8ec, 0xff7d868f},
    {QPalette::BrightText, 0xffb3261e, 0xffb3261e, 0xffff8a80, 0xffff8a80},
    {QPalette::Light, 0xffffffff, 0xffffffff, 0xff3b4249, 0xff3b4249},
    {QPalette::Midlight, 0xfff0f3f6, 0xfff0f3f6, 0xff333940, 0xff333940},
    {QPalette::Mid, 0xffb9c2ca, 0xffcbd2d8, 0xff3b4249, 0xff343a41},
    {QPalette::Dark, 0xff929da7, 0xffb9c2ca, 0xff15181b, 0xff1a1d21},
    {QPalette::Shadow, 0xff5f6a74, 0xff929da7, 0xff0c0e10, 0xff0c0e10},
    {QPalette::Link, 0xff0b5cad, 0xff8b949c, 0xff6cb6ff, 0xff7d868f},
    {QPalette::LinkVisited, 0xff6a3fa0, 0xff8b949c, 0xffc5a3f5, 0xff7d868f},
}};

// The one accent colour. White on it keeps a contrast of more than 4.5 to 1 in both schemes.
constexpr QRgb accentLight = 0xff0b5cad;
constexpr QRgb accentDark = 0xff1f6fb8;
constexpr QRgb accentText = 0xffffffff;

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

/// Signs of message boxes; their colours keep 3 to 1 on the ground of either scheme.
struct BoxSign
{
    QStyle::StandardPixmap pixmap;
    const char *icon;
    QRgb colour;
};
constexpr std::array boxSigns{
    BoxSign{QStyle::SP_MessageBoxInformation, "about", 0xff2f7fc8},
    BoxSign{QStyle::SP_MessageBoxQuestion, "question", 0xff2f7fc8},
    BoxSign{QStyle::SP_MessageBoxWarning, "warning", 0xffb87a00},
    BoxSign{QStyle::SP_MessageBoxCritical, "error", 0xffd8483e},
};

/// The header of a page of a tool box: a flat bar, marked with the accent colour while its page
/// is open.
void drawPageHeader(const QStyleOptionToolBox &tab, QPainter &painter, const QStyle &style,
                    const QWidget *widget)
{
    constexpr int gap = 8;
    constexpr int barWidth = 3;
    const bool open = tab.state & QStyle::State_Selected;
    const bool under = tab.state & QStyle::State_MouseOver;
    const QRect area = tab.rect.adjusted(0, 1, 0, -1);
    painter.save();
    painter.fillRect(area,
                     tab.palette.color(under && !open ? QPalette::Midlight : QPalette::Button));
    if (open) {
        painter.fillRect(QRect(area.topLeft(), QSize(barWidth, area.height())),
                         tab.palette.color(QPalette::Highlight));
    }
    const int iconSize = style.pixelMetric(QStyle::PM_SmallIconSize, &tab, widget);
    const QRect icon(area.left() + barWidth + gap, area.center().y() - iconSize / 2 + 1, iconSize,
                     iconSize);
    tab.icon.paint(&painter, icon);
    QFont font = painter.font();
    font.setWeight(open ? QFont::DemiBold : QFont::Normal);
    painter.setFont(font);
    painter.setPen(tab.palette.color(QPalette::ButtonText));
    const QRect text = area.adjusted(icon.right() + gap - area.left(), 0, -gap, 0);
    style.drawItemText(&painter, text, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic,
                       tab.palette, tab.state & QStyle::State_Enabled,
                       painter.fontMetrics().elidedText(tab.text, Qt::ElideRight, text.width()),
                       QPalette::ButtonText);
    if (tab.state & QStyle::State_HasFocus) {
        painter.setPen(tab.palette.color(QPalette::Highlight));
        painter.drawRect(area.adjusted(0, 0, -1, -1));
    }
    painter.restore();
}

/// Keeps 3 to 1 on every ground of the dark palette.
constexpr QRgb outlineDark = 0xff757e87;

/// Fusion takes the outline from a darker shade of the window, which vanishes on a dark one.
void drawOutline(QStyle::PrimitiveElement element, const QStyleOption &option, QPainter &painter)
{
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(&option);
    const bool isDefault =
        button != nullptr && button->features.testFlag(QStyleOptionButton::DefaultButton);
    const bool focused = isDefault || option.state & QStyle::State_HasFocus;
    const bool enabled = option.state & QStyle::State_Enabled;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(focused   ? option.palette.color(QPalette::Link)
                   : enabled ? QColor::fromRgb(outlineDark)
                             : option.palette.color(QPalette::Mid));
    painter.setBrush(Qt::NoBrush);
    const QRectF area = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (element == QStyle::PE_IndicatorRadioButton)
        painter.drawEllipse(area);
    else
        painter.drawRoundedRect(area, 2, 2);
    painter.restore();
}

/// A button that stays pressed looks it at a glance, not by a shade.
void drawPressed(const QStyleOption &option, QPainter &painter)
{
    const QPalette &palette = option.palette;
    QColor fill = palette.color(QPalette::Highlight);
    fill.setAlphaF(isDark(palette) ? 0.45F : 0.15F);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette.color(QPalette::Link));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.restore();
}

/// What has an outline around the whole of its rectangle.
bool isOutlined(QStyle::PrimitiveElement element, const QStyleOption &option)
{
    switch (element) {
    case QStyle::PE_IndicatorCheckBox:
    case QStyle::PE_IndicatorRadioButton:
    case QStyle::PE_FrameLineEdit:
        return true;
    case QStyle::PE_Frame: {
        const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(&option);
        return frame == nullptr || frame->lineWidth > 0;
    }
    case QStyle::PE_PanelButtonCommand: {
        const auto *button = qstyleoption_cast<const QStyleOptionButton *>(&option);
        return button == nullptr || !button->features.testFlag(QStyleOptionButton::Flat);
    }
    default:
        return false;
    }
}

/// A flat groove and a handle that is darker than it. On a dark ground the handle needs a rim.
struct ScrollBarColours
{
    QRgb groove;
    QRgb handle;
    QRgb handleUnder; ///< under the mouse, or while it is pulled
    QRgb rim;
};
constexpr ScrollBarColours scrollBarLight{0xffe1e6ea, 0xff7f8a94, 0xff5f6a74, 0xff7f8a94};
constexpr ScrollBarColours scrollBarDark{0xff4a525a, 0xff1a1d21, 0xff0c0e10, 0xff929ba4};

void drawScrollBar(const QStyleOptionSlider &bar, QPainter &painter, const QStyle &style,
                   const QWidget *widget)
{
    const ScrollBarColours &colours = isDark(bar.palette) ? scrollBarDark : scrollBarLight;
    const auto areaOf = [&](QStyle::SubControl control) {
        return style.subControlRect(QStyle::CC_ScrollBar, &bar, control, widget);
    };
    painter.save();
    painter.fillRect(bar.rect, QColor::fromRgb(colours.groove));
    const bool enabled = bar.state & QStyle::State_Enabled && bar.maximum > bar.minimum;
    if (enabled) {
        const bool under = bar.activeSubControls & QStyle::SC_ScrollBarSlider;
        const QRectF handle =
            QRectF(areaOf(QStyle::SC_ScrollBarSlider)).adjusted(2.5, 2.5, -2.5, -2.5);
        const qreal radius = qMin(handle.width(), handle.height()) / 2;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QColor::fromRgb(colours.rim));
        painter.setBrush(QColor::fromRgb(under ? colours.handleUnder : colours.handle));
        painter.drawRoundedRect(handle, radius, radius);
    }
    painter.restore();
    const bool upright = bar.orientation == Qt::Vertical;
    const bool mirrored = !upright && bar.direction == Qt::RightToLeft;
    const auto back = upright    ? QStyle::PE_IndicatorArrowUp
                      : mirrored ? QStyle::PE_IndicatorArrowRight
                                 : QStyle::PE_IndicatorArrowLeft;
    const auto forth = upright    ? QStyle::PE_IndicatorArrowDown
                       : mirrored ? QStyle::PE_IndicatorArrowLeft
                                  : QStyle::PE_IndicatorArrowRight;
    for (const auto &[control, arrow] : {std::pair{QStyle::SC_ScrollBarSubLine, back},
                                         std::pair{QStyle::SC_ScrollBarAddLine, forth}}) {
        QStyleOption option(bar);
        option.rect = areaOf(control).adjusted(4, 4, -4, -4);
        option.state.setFlag(QStyle::State_Enabled, enabled);
        style.drawPrimitive(arrow, &option, &painter, widget);
    }
}

} // namespace

TolvxAppStyle::TolvxAppStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void TolvxAppStyle::install(QApplication &application)
{
    auto *style = new TolvxAppStyle;
    QApplication::setStyle(style); // the application owns it
    style->followSystem();
    application.installEventFilter(style);
}

QPalette TolvxAppStyle::palette(Scheme scheme)
{
    const bool light = scheme == Scheme::Light;
    QPalette result;
    for (const RoleColours &row : roleTable) {
        result.setColor(row.role, QColor::fromRgb(light ? row.light : row.dark));
        result.setColor(QPalette::Disabled, row.role,
                        QColor::fromRgb(light ? row.lightDisabled : row.darkDisabled));
    }
    const QColor accent = QColor::fromRgb(light ? accentLight : accentDark);
    result.setColor(QPalette::Highlight, accent);
    result.setColor(QPalette::HighlightedText, QColor::fromRgb(accentText));
    result.setColor(QPalette::Inactive, QPalette::Highlight, accent);
    result.setColor(QPalette::Disabled, QPalette::Highlight,
                    result.color(QPalette::Disabled, QPalette::Mid));
    result.setColor(QPalette::Disabled, QPalette::HighlightedText,
                    result.color(QPalette::Disabled, QPalette::Text));
    return result;
}

TolvxAppStyle::Scheme TolvxAppStyle::systemScheme()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    const Qt::ColorScheme scheme = QGuiApplication::styleHints()->colorScheme();
    if (scheme != Qt::ColorScheme::Unknown)
        return scheme == Qt::ColorScheme::Dark ? Scheme::Dark : Scheme::Light;
#endif
    // With no palette of its own the application shows the system's.
    const QPalette own = QApplication::palette();
    QApplication::setPalette(QPalette());
    const Scheme result = isDark(QApplication::palette()) ? Scheme::Dark : Scheme::Light;
    QApplication::setPalette(own);
    return result;
}

void TolvxAppStyle::drawControl(ControlElement element, const QStyleOption *option,
                                QPainter *painter, const QWidget *widget) const
{
    if (element == CE_ToolBoxTab) {
        if (const auto *tab = qstyleoption_cast<const QStyleOptionToolBox *>(option)) {
            drawPageHeader(*tab, *painter, *this, widget);
            return;
        }
    }
    if (element == CE_MenuItem && (option->state & State_Selected)) {
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            // Fusion draws the icon of the selected entry as any other, dark on the accent.
            QStyleOptionMenuItem selected(*item);
            const int size = pixelMetric(PM_SmallIconSize, option, widget);
            const qreal ratio = painter->device()->devicePixelRatio();
            if (!selected.icon.isNull() && (option->state & State_Enabled)) {
                selected.icon = QIcon(item->icon.pixmap(QSize(size, size), ratio, QIcon::Selected));
            }
            QProxyStyle::drawControl(element, &selected, painter, widget);
            return;
        }
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void TolvxAppStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                  QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    // On no ground does Fusion tell that a text or a table has the focus.
    const bool isFocusedFrame = element == PE_Frame && option->state.testFlag(State_HasFocus);
    if ((isDark(option->palette) || isFocusedFrame) && isOutlined(element, *option))
        drawOutline(element, *option, *painter);
    if (element == PE_PanelButtonCommand && option->state.testFlag(State_On))
        drawPressed(*option, *painter);
}

void TolvxAppStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                       QPainter *painter, const QWidget *widget) const
{
    if (control == CC_ScrollBar) {
        if (const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option)) {
            drawScrollBar(*bar, *painter, *proxy(), widget);
            return;
        }
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (!isDark(option->palette))
        return;
    const auto *comboBox = qstyleoption_cast<const QStyleOptionComboBox *>(option);
    const auto *spinBox = qstyleoption_cast<const QStyleOptionSpinBox *>(option);
    if ((comboBox != nullptr && comboBox->frame) || (spinBox != nullptr && spinBox->frame))
        drawOutline(PE_FrameLineEdit, *option, *painter);
}

QSize TolvxAppStyle::sizeFromContents(ContentsType type, const QStyleOption *option,
                                      const QSize &contentsSize, const QWidget *widget) const
{
    const QSize size = QProxyStyle::sizeFromContents(type, option, contentsSize, widget);
    switch (type) {
    case CT_PushButton:
        return size + QSize(16, 6);
    // They stand in one row with buttons.
    case CT_ComboBox:
    case CT_LineEdit:
    case CT_SpinBox:
        return size + QSize(0, 4);
    default:
        return size;
    }
}

QIcon TolvxAppStyle::standardIcon(StandardPixmap pixmap, const QStyleOption *option,
                                  const QWidget *widget) const
{
    for (const BoxSign &sign : boxSigns) {
        if (sign.pixmap == pixmap)
            return LineIcon::icon(QLatin1String(sign.icon), QColor::fromRgb(sign.colour));
    }
    return QProxyStyle::standardIcon(pixmap, option, widget);
}

int TolvxAppStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                               const QWidget *widget) const
{
    switch (metric) {
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return 8;
    case PM_ToolBarIconSize:
        return 20;
    case PM_ToolBarItemSpacing:
    case PM_ToolBarItemMargin:
        return 4;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int TolvxAppStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                             QStyleHintReturn *returnData) const
{
    switch (hint) {
    case SH_MessageBox_TextInteractionFlags:
        // Texts of boxes can be copied into a mail.
        return Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse;
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    default:
        break;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

bool TolvxAppStyle::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ThemeChange && !m_following)
        QMetaObject::invokeMethod(this, &TolvxAppStyle::followSystem, Qt::QueuedConnection);
    return QProxyStyle::eventFilter(watched, event);
}

void TolvxAppStyle::followSystem()
{
    if (m_following)
        return;
    m_following = true;
    QApplication::setPalette(palette(systemScheme()));
    m_following = false;
}
