#include "app/pagetable.h"

#include "app/generatoroutputform.h"
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

constexpr std::array pages{
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
