// SPDX-License-Identifier: MIT
// File operations: reading, opening, copying, testing, and the parts of path names.
#pragma once

#include "quillon/export.h"

#include <cstdio>

extern "C" {

// Reads a whole text file; the caller frees the terminated buffer with `delete[]`.
//
// Reads no more than the file's length at the time of opening: a file whose length is 0, as some of
// the system's are, yields the empty string.
// Null, with one line on standard error, if the file cannot be opened or memory runs out.
// A folder and a pipe, which have no length, cannot be opened.
QUILLON_API char* __mFileOps_create_string_from_file(const char* path);

// Opens a binary stream for reading, to be closed with __mFileOps_close.
// Null if the file cannot be opened, or is a folder.
QUILLON_API void __mFileOps_open_for_read(std::FILE*& stream, const char* path);

// Opens a binary stream for writing, which empties the file; to be closed with __mFileOps_close.
// Null if the file cannot be opened.
QUILLON_API void __mFileOps_open_for_write(std::FILE*& stream, const char* path);

// Closes a stream of the two above; null is allowed.
QUILLON_API void __mFileOps_close(std::FILE* stream);

// True if `path` leads to a file or a folder.
QUILLON_API bool __mFileOps_file_exists(const char* path);

// Copies the bytes of one file to another, which is made or emptied first.
//
// A source that cannot be opened leaves the destination empty; nothing is reported.
// A file is not copied onto itself.
QUILLON_API void __mFileOps_file_copy(const char* destination, const char* source);

// True if `name` ends with `extension`, case-sensitively, with two characters or more before it.
QUILLON_API bool __mFileOps_check_for_extension(const char* name, const char* extension);

// Makes one folder, after "\" and "//" in the path became "/".
// False if it exists, its parent does not, or the path has 260 characters or more.
QUILLON_API bool __mFileOps_create_directory(const char* path);

// Parts of a path, in which "/" and "\" both separate.
// A path of more than 32767 characters counts as empty.
// `output` has capacity for the result, and may be the path itself.

// What follows the last dot, even if that is in the name of a folder; empty without a dot.
QUILLON_API void __mFileOps_get_pathname_extention(char* output, const char* path);

// The name after the last separator, up to the last dot; empty if no dot follows the separator.
QUILLON_API void __mFileOps_get_pathname_filename(char* output, const char* path);

// The part before the last separator; empty without one.
QUILLON_API void __mFileOps_get_pathname_path(char* output, const char* path);
}
