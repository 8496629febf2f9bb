#include "gui/basetreeform.h"

#include "canopen/cohelper.h"
#include "gui/datatypeicon.h"

#include <QComboBox>
#include <QSignalBlocker>

namespace {

const QString etherCatClass = QStringLiteral("EtherCAT");

/// From here on the types are those of signals, of which objects have only a few.
constexpr quint16 firstSignalType = CAN::BITS2;

bool isOffered(quint16 type, bool withBits)
{
    if (type < firstSignalType)
        return type != CAN::UNKNOWN_TYPE;
    return type == CAN::UTF8_STRING || (withBits && type <= CAN::BITS7);
}

} // namespace

BaseTreeForm::BaseTreeForm(QWidget *parent) : QWidget(parent) {}

void BaseTreeForm::open(const FormContext &context, const Place &place)
{
    m_context = context;
    m_line = place.line;
    m_index = place.index;
    m_subindex = place.subindex;
    m_canEdit = place.canEdit;
    m_expert = place.expert;
}

bool BaseTreeForm::selectComboItem(QComboBox &comboBox, const QVariant &data)
{
    for (int row = 0; row < comboBox.count(); ++row) {
        if (comboBox.itemData(row) == data) {
            comboBox.setCurrentIndex(row);
            return true;
        }
    }
    return false;
}

void BaseTreeForm::fillDataTypes(QComboBox &comboBox, const QString &objectClass)
{
    const QSignalBlocker blocker(comboBox);
    const bool withBits = objectClass.compare(etherCatClass, Qt::CaseInsensitive) == 0;
    comboBox.clear();
    const QMap<quint16, QString> &types = COHelper::stringDataTypeIndexMap();
    for (auto type = types.cbegin(); type != types.cend(); ++type) {
        if (isOffered(type.key(), withBits))
            comboBox.addItem(DataTypeIcon::icon(type.key()), type.value(), type.key());
    }
}
