#pragma once

class ObjectDataBase;

/// What differs between the two generations of the target stack by name alone. A generator that
/// serves both takes its words from here and overrides only what differs in shape. Values are
/// plain ASCII and live for the program's whole life.
struct StackDialect
{
    bool isV4;
    const char *bannerSuffix;   ///< behind the version in most banners: " (V4)" or nothing
    const char *prefix;         ///< "CORE_" or "CO_"
    const char *constant;       ///< qualifier of constants
    const char *constStorage;   ///< storage class of constants
    const char *storage;        ///< storage class of variables
    const char *watchdog;       ///< macro between the steps of an initialisation
    const char *dataTypePrefix; ///< of the type tags in description rows
    const char *protocolPrefix; ///< of the protocol words
    const char *udsConstant;    ///< qualifier of the UDS structures
    const char *udsIndent;      ///< of the UDS structures and calls
    const char *lineType;       ///< type of the line variable
    const char *line;           ///< the line variable of loops
    const char *multiLineCount; ///< number of lines
    const char *parameterError; ///< return value for a wrong parameter
    const char *commonInitType; ///< type of the common init structure
    const char *commonInitCall; ///< function that takes it
    const char *serviceIndent;  ///< of the rows of the service init table
    const char *dataTypeHeader; ///< header of the base types
    const char *isoTpHeader;    ///< header of ISO-TP

    [[nodiscard]] static const StackDialect &v4();
    [[nodiscard]] static const StackDialect &v3();
    /// The dialect that the project asks for: V4 if the general setting `use_core_headers` holds
    /// exactly that, V3 in any other case and without a project.
    [[nodiscard]] static const StackDialect &of(ObjectDataBase *store);
};
