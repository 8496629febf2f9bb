#pragma once

#include <QString>

#include <span>

class BaseMainForm;
class QWidget;

/// What decides which pages the window shows.
struct PageContext
{
    int lineType = 0;
    quint8 line = 0;
    /// J1939 setting `cia510serversupport`: a J1939 line then has an object dictionary too.
    bool hasSdoServer = false;
};

/// One page of the tool box.
struct PageFactory
{
    const char *title; ///< as it is labelled
    const char *icon;  ///< name in the icon family
    bool (*shown)(const PageContext &context);
    BaseMainForm *(*make)(QWidget *parent);
    /// Label per line in the EnergyBus edition, with "%1" for the line; null if it has none.
    const char *titlePerLine;

    [[nodiscard]] QString label(const PageContext &context) const;
    /// All pages of all editions, in the order in which the tool box shows them. A form is made
    /// once and kept when its page comes and goes.
    [[nodiscard]] static std::span<const PageFactory> all();
};
