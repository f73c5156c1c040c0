// The module's two diagnostic outputs and its fixed-line writer.
#pragma once

#if defined(__GNUC__)
#define ORVA_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define ORVA_PRINTF_FORMAT(fmt, args)
#endif

namespace orva {

// printf-style trace for developers: written to standard output with a line feed, only
// while the data center's debugAssistantEnabled flag is set (from load until CreateEngine,
// then as the engine wrapper's enableDebugAssistant says). Formatted into a zero-filled
// 4096-byte buffer; longer output is cut to fit.
void logToConsole(const char* format, ...) ORVA_PRINTF_FORMAT(1, 2);

// printf-style line for the engine's own log file: always formatted (4096 bytes, cut to
// fit) and handed to the engine with the module tag "Electron". Does nothing while the
// engine library cannot be loaded.
void logToEngine(const char* format, ...) ORVA_PRINTF_FORMAT(1, 2);

// Writes a fixed diagnostic line (trace and "blocking call failed" lines carry their own
// " \n") to standard output as it is, unconditionally. Flushed at once, like logToConsole,
// so that these lines keep their place among the script's own console output.
void writeLine(const char* text);

}  // namespace orva
