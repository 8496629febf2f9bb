#pragma once

#include "generators/base/stackdialect.h"
#include "store/objectdatabase.h"

#include <QObject>
#include <QString>

/// Text blocks of the generated initialisation code that several generators share, for the older
/// generation of the stack. Has no state but the store, which outlives it; a setting that is
/// missing reads as an empty text or 0.
class CommonGeneratorHelper : public QObject
{
    Q_OBJECT

public:
    /// Selects one of the versioned init structures.
    enum class InitStructure { Common = 0, RawCAN = 1, CANopen = 2, J1939 = 3, UDS = 5 };

    explicit CommonGeneratorHelper(ObjectDataBase *store) : CommonGeneratorHelper(store, false) {}

    /// The number that tells the stack the layout of an init structure.
    [[nodiscard]] int initStructureVersion(InitStructure structure) const;
    /// The definition of `commonInitVars`.
    [[nodiscard]] QString commonInit() const;
    /// The protocol constant of one line, with the UDS constant where the line has UDS.
    [[nodiscard]] QString protocolWord(quint8 line) const;
    /// The lines whose code is generated, in the order of the project.
    [[nodiscard]] QList<quint8> lines() const;
    [[nodiscard]] bool isMultiLine() const { return lines().size() > 1; }
    /// A single line that is nothing but a UDS boot loader.
    [[nodiscard]] bool isBootLoader() const;
    /// The line has a UDS server or client.
    [[nodiscard]] bool hasUds(quint8 line) const;
    /// Any line has.
    [[nodiscard]] bool hasUds() const;
    /// ISO-TP is part of the project: by its setting, or since UDS runs on it. gen_define.h has the
    /// switch and the counts then.
    [[nodiscard]] bool hasIsoTp() const;
    /// The message is sent or received as safety data (SAE J1939-76), apart from all others.
    [[nodiscard]] bool isSafetyMessage(const ObjectDataBase::PGN &pgn) const;
    /// For how many source addresses the values of a received message are kept apart; 1 for one
    /// place, which each reception overwrites.
    [[nodiscard]] quint32 sourceAddresses(const ObjectDataBase::PGN &pgn) const;

protected:
    CommonGeneratorHelper(ObjectDataBase *store, bool isV4);

    [[nodiscard]] int number(const char *key) const;
    [[nodiscard]] quint32 j1939Number(const char *key) const;

    ObjectDataBase *m_store;
    const StackDialect &m_dialect;
};

/// The same blocks for the newer generation.
class CommonGeneratorHelperV4 : public CommonGeneratorHelper
{
    Q_OBJECT

public:
    explicit CommonGeneratorHelperV4(ObjectDataBase *store) : CommonGeneratorHelper(store, true) {}
};
