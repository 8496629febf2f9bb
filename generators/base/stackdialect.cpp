#include "generators/base/stackdialect.h"

#include "store/projectsettings.h"

const StackDialect &StackDialect::v4()
{
    static constexpr StackDialect dialect = {.isV4 = true,
                                             .bannerSuffix = " (V4)",
                                             .prefix = "CORE_",
                                             .constant = "CORE_CONST",
                                             .constStorage = "CORE_CONST_STORAGE_CLASS",
                                             .storage = "CORE_STORAGE_CLASS",
                                             .watchdog = "CORE_HANDLE_WATCHDOG",
                                             .dataTypePrefix = "CORE_DTYPE_",
                                             .protocolPrefix = "CORE_PROT_TYPE_",
                                             .udsConstant = "CORE_CONST",
                                             .udsIndent = "    ",
                                             .lineType = "CAN_LINE_TYPE",
                                             .line = "CAN_LINE",
                                             .multiLineCount = "CAN_MULTI_LINE_CNT",
                                             .parameterError = "RET_PARAMETER_INVALID",
                                             .commonInitType = "CORE_COMMON_INIT_VAL_T",
                                             .commonInitCall = "coreStackInit",
                                             .serviceIndent = "   ",
                                             .dataTypeHeader = "core_datatype.h",
                                             .isoTpHeader = "core_isotp.h"};
    return dialect;
}

const StackDialect &StackDialect::v3()
{
    static constexpr StackDialect dialect = {.isV4 = false,
                                             .bannerSuffix = "",
                                             .prefix = "CO_",
                                             .constant = "CO_CONST",
                                             .constStorage = "CO_CONST_STORAGE_CLASS",
                                             .storage = "CO_STORAGE_CLASS",
                                             .watchdog = "CO_HANDLE_WATCHDOG",
                                             .dataTypePrefix = "CO_DTYPE_",
                                             .protocolPrefix = "MP_PROT_TYPE_",
                                             .udsConstant = "const",
                                             .udsIndent = "\t",
                                             .lineType = "CO_LINE_TYPE",
                                             .line = "CO_LINE",
                                             .multiLineCount = "CO_MULTI_LINE_CNT",
                                             .parameterError = "RET_INVALID_PARAMETER",
                                             .commonInitType = "CO_COMMON_INIT_VAL_T",
                                             .commonInitCall = "commonStackInit",
                                             .serviceIndent = "       ",
                                             .dataTypeHeader = "co_datatype.h",
                                             .isoTpHeader = "iso_tp.h"};
    return dialect;
}

const StackDialect &StackDialect::of(ObjectDataBase *store)
{
    const bool isV4 =
        store && ProjectSettings(*store).text("use_core_headers") == QLatin1String("V4");
    return isV4 ? v4() : v3();
}
