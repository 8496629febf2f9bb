#pragma once

#include <QDialog>
#include <QSet>

#include <memory>

class ObjectDataBase;

namespace Ui {
class IndexDestinationDialog;
}

/// Asks which index an object is to have in a line of the project. It offers a free index, and
/// refuses none that is taken but tells that the object there is replaced.
class IndexDestinationDialog : public QDialog
{
    Q_OBJECT

public:
    /// Reads the line of the store once. The first free index from `wanted` on is offered, below it
    /// if there is none above. Without a name the dialog doesn't ask for one.
    IndexDestinationDialog(ObjectDataBase &store, quint8 line, quint16 wanted, const QString &name,
                           QWidget *parent = nullptr);
    ~IndexDestinationDialog() override;

    /// Indices outside are refused; both ends are inside. All object indices by default.
    void setAllowedRange(quint16 low, quint16 high);
    /// Further objects that go along at the same distance, the last of them so many indices behind.
    void setFollowers(int count, int distanceOfLast);

    [[nodiscard]] quint16 targetIndex() const { return m_target; }
    [[nodiscard]] QString name() const;

private:
    void check();

    std::unique_ptr<Ui::IndexDestinationDialog> ui;
    QSet<quint16> m_present;
    quint16 m_low = 0x1000;
    quint16 m_high = 0xFFFF;
    quint16 m_target = 0;
    int m_followers = 0;
    int m_distanceOfLast = 0;
};
