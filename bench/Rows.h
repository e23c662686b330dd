#ifndef ROWS_H
#define ROWS_H

namespace TevBench {

// The rows of the table, each function a part of it.

/// Reads through the component's tables, alone and by two threads.
void addReadRows();

/// The end of a transaction, start, and the memory that the catalogue takes.
void addLifecycleRows();

/// The common library's share: patterns and the log.
void addCommonRows();

void addAgentRows();

/// Transfers to a private server.
void addExportRows();

}  // namespace TevBench

#endif
