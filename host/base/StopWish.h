#pragma once

namespace grouptracker {

/// The wish of somebody outside that the program stops, for everything that waits: for more input,
/// for the reader of a pipe, for a pipe's other end. There is one for the program, as there is one
/// set of signals; without anybody who catches these, it is never there.
namespace stop_wish {

/// Whoever catches the wish says what becomes readable then; -1 when nobody does any more. Not
/// while anybody waits.
void setDescriptor(int descriptor);
/// -1 without anybody who catches the wish.
int descriptor();
bool isThere();

/// Waits until a file can be read or written, as `events` of poll() say, or until the wish is
/// there: false then. At most `milliseconds` when they are not negative; false when they are over.
bool waitFor(int file, short events, int milliseconds = -1);

}  // namespace stop_wish

}  // namespace grouptracker
