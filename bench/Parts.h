#pragma once

#include <QStringList>

/// The parts of a backup that are measured beside other programs. Each takes the words after its
/// name, does its work and returns the exit code; the caller measures the process.
namespace quorvane::bench {

/// SECONDS FILE...: writes a date, in seconds since 1970, into every file, as staging does.
int stamp(const QStringList& words);
/// FILE: its digest and size, as before an upload.
int hash(const QStringList& words);
/// FROM TO: copies every file of a folder with a flush each, and takes the digest of both.
int copy(const QStringList& words);
/// raw|resumable URL FILE: sends the file to the service there, as a backup does.
int send(const QStringList& words);
/// Throws away what is uploaded to it; the port is the first line of its output.
int sink(const QStringList& words);
/// FILE COUNT: a new state store, in which COUNT records are made, counted, fetched and retried.
int store(const QStringList& words);
/// COUNT: the same as SQL text for the shell of SQLite, to be run on a store without records.
int storeScript(const QStringList& words);
/// HOME LIBRARY: lists the library into the state in HOME.
int scan(const QStringList& words);
/// HOME LIBRARY: the same, and stages everything.
int stage(const QStringList& words);

} // namespace quorvane::bench
