#ifndef TEV_SCHEMA_POPULATOR_LOG_H
#define TEV_SCHEMA_POPULATOR_LOG_H

#include "LoggingWrapper.h"

// How the component writes to the log. A file that uses these macros has a constant `sourceFile`, its path without the
// extension. Arguments are evaluated only when the record is wanted, and then once for each of the two records.

/// A message of `LEVEL`, a `LogLevel`: to the log and, the same, to the trace.
#define SCHEMA_LOG_AS(FUNCTION_NAME, LEVEL, ...)                                                                    \
    do {                                                                                                            \
        Tev::LoggingWrapper& schemaLog = Tev::LoggingWrapper::instance();                                           \
        if (schemaLog.get_level() >= (LEVEL)) {                                                                     \
            schemaLog.log_printf(FUNCTION_NAME, LEVEL, 1, __VA_ARGS__);                                             \
            schemaLog.trace_v2_printf(Tev::Trace::Schema, LEVEL, sourceFile, FUNCTION_NAME, __LINE__, __VA_ARGS__); \
        }                                                                                                           \
    } while (false)

#define SCHEMA_LOG(LEVEL, ...) SCHEMA_LOG_AS(__func__, LEVEL, __VA_ARGS__)

/// A debug trace of `KIND`, a `TraceKind`, of a trace subsystem.
#define SCHEMA_TRACE_TO(SUBSYSTEM, FUNCTION_NAME, KIND, ...)                                            \
    do {                                                                                                \
        Tev::LoggingWrapper& schemaLog = Tev::LoggingWrapper::instance();                               \
        if (schemaLog.get_level() >= 8) {                                                               \
            schemaLog.trace_printf(sourceFile, FUNCTION_NAME, __LINE__, KIND, __VA_ARGS__);             \
            schemaLog.trace_v2_printf(SUBSYSTEM, 14, sourceFile, FUNCTION_NAME, __LINE__, __VA_ARGS__); \
        }                                                                                               \
    } while (false)

#define SCHEMA_TRACE_AS(FUNCTION_NAME, KIND, ...) SCHEMA_TRACE_TO(Tev::Trace::Schema, FUNCTION_NAME, KIND, __VA_ARGS__)

#define SCHEMA_TRACE(KIND, ...) SCHEMA_TRACE_AS(__func__, KIND, __VA_ARGS__)

namespace TevSchemaPopulator {

enum TraceKind { TraceDebug = 0, TraceEntry = 9, TraceExit = 10 };

enum LogLevel { LogError = 3, LogWarning = 4, LogRefused = 5, LogNotice = 6 };

}  // namespace TevSchemaPopulator

#endif
