#pragma once

#include "canopen/objectranges.h"
#include "generators/canopen/objdictcontext.h"

class CodeWriter;

/// The functions that initialise the stack with the dictionary.
class ObjDictInit
{
public:
    ObjDictInit(const ObjDictContext &context, CodeWriter &out) : m_context(context), m_out(out) {}

    void writeSingleLine();
    void writeMultiLine();
    /// Only the dictionary, for a J1939 stack that serves SDOs.
    void writeServerOnly();

    // Steps, for files that initialise more protocols than CANopen.

    /// What a line needs behind the common part, in the order in which the stack expects it.
    void writeLineCalls(quint8 line);
    void writeLoadParameters();
    /// Work of all lines together, behind the last of them.
    void writeFinishBody();
    /// The call with its check and the watchdog behind it.
    void writeCall(const QByteArray &call, const QByteArray &indent = "    ");

private:
    void writeSingleHead(const char *name, bool hasOptions);
    void writeSingleWrapper();
    void writeCommonFunction();
    void writeLineFunction(quint8 line);
    void writeLineDispatch();
    void writeStackInit();
    void writeFinish();

    void writeModes();
    void writeCommonCalls();
    void writeSdoServers(quint8 line);
    void writeSdoClients(quint8 line);
    void writeUsdoBranch(const char *usdoCall, bool hasUsdo, const QList<QByteArray> &sdoCalls);
    void writeServices(quint8 line);
    void writeNmt(quint8 line);
    void writeRole(bool isMaster, quint8 line, const QByteArray &indent);
    void writePdos(quint8 line);
    void writeOdInit(quint8 line);
    /// "function(canLine, arguments)", without the line in the single line form.
    [[nodiscard]] QByteArray call(const char *function, const QByteArray &arguments = {}) const;
    [[nodiscard]] bool has(quint8 line, quint16 index) const;
    [[nodiscard]] QList<QByteArray> numberedCalls(const char *function, quint8 line,
                                                  const ObjectRange &range) const;

    const ObjDictContext &m_context;
    CodeWriter &m_out;
};
