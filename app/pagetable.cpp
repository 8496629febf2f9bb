#include "app/pagetable.h"

#include "app/generatoroutputform.h"
#include "canopen/linetype.h"
#include "odeditor/objectdictionaryform.h"
#include "store/edition.h"

#include <array>

namespace {

template <typename Form>
BaseMainForm *make(QWidget *parent)
{
    return new Form(parent);
}

bool always(const PageContext &)
{
    return true;
}

/// The SDO server of CiA 510 gives a J1939 line a dictionary, too.
bool hasDictionary(const PageContext &context)
{
    const LineType &type = LineType::of(context.lineType);
    return type.hasCANopen || (type.hasJ1939 && context.hasSdoServer);
}

constexpr std::array pages{
    PageFactory{"CANopen Object Dictionary", "dictionary", hasDictionary,
                make<ObjectDictionaryForm>, "CANopen Object Dictionary - line %1"},
    PageFactory{"Generator Output", "output", always, make<GeneratorOutputForm>, nullptr},
};

} // namespace

QString PageFactory::label(const PageContext &context) const
{
    if (titlePerLine != nullptr && Edition::isEnergyBus())
        return QString::fromLatin1(titlePerLine).arg(context.line);
    return QString::fromLatin1(title);
}

std::span<const PageFactory> PageFactory::all()
{
    return pages;
}
