// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/ReadingProgress.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>

#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

namespace pelluvia {

struct CallLogReaderState; // internal

/// The keys of the user information of an error of `CallLogReader`: where in the log it is
/// (integers). The line counts from 1. The column counts bytes, from 1, and is there where the JSON
/// is wrong.
inline constexpr std::string_view callLogErrorLine = "CallLogErrorLine";
inline constexpr std::string_view callLogErrorColumn = "CallLogErrorColumn";

/// A producer that makes the calls of a call log (see docs/call-log.md) on a receiver, in order and
/// as they stand: nothing is added at the end, and calls that a well-behaved producer would not
/// make in that order are made all the same.
///
///     CallLogReader reader(*exporter);
///     if (const ErrorPtr error = reader.processFile("ride.jsonl")) {
///         const std::int64_t line = error->integer(callLogErrorLine);
///         show("line " + std::to_string(line) + ": " + error->localizedDescription());
///     }
///
/// Each call is made as soon as its line is read. Lines of white space are passed over. The first
/// fault ends the reading, and neither its line nor what follows has any effect on the receiver.
/// What is wrong in a log is an error of `NSCocoaErrorDomain` with the code
/// `NSFileReadCorruptFileError`; a file that cannot be read is one of "NSPOSIXErrorDomain" with the
/// system's error number. Both have a description, the path if there was one, and the line. The
/// receiver's `error` is not told: what it is told is what the log says.
///
/// Memory does not grow with the log, but with its longest line; docs/call-log.md has the limits.
/// The reader may read one log after the other.
///
/// Threads: one at a time; the receiver is called on the thread that reads. A stop may be requested
/// on any thread.
class PELLUVIA_EXPORT CallLogReader {
  public:
    /// The receiver is borrowed and must outlive the reader.
    explicit CallLogReader(GPSOutputReceiver &receiver);
    CallLogReader(const CallLogReader &) = delete;
    CallLogReader &operator=(const CallLogReader &) = delete;
    ~CallLogReader();

    /// Stops reading for good: once a stop is requested, no call is made any more but the end of a
    /// transfer that is open, and an error of `NSCocoaErrorDomain` with the code
    /// `NSUserCancelledError` is returned. Seen before each call, and while a pipe is waited for.
    /// By default there is nobody to request one.
    void setStopToken(std::stop_token token);

    /// Called each time that the log has nothing to read at the moment and is about to be waited
    /// for, as a pipe is: the time to write out what targets hold back. Called on the thread that
    /// reads, between two calls to the receiver; it must not use the reader. Never called for a
    /// regular file. Empty, as at first: nobody is told.
    void setSourcePaused(std::function<void()> sourcePaused);

    /// Reads the log at a path. Null when all went well, else the error. A path that holds a NUL is
    /// an error.
    ErrorPtr processFile(const std::string &path);
    /// Reads an open file or pipe, from where it stands to its end. The descriptor is borrowed.
    ErrorPtr processDescriptor(int descriptor);
    /// Reads a log in memory, borrowed for the call.
    ErrorPtr processText(std::string_view log);

    /// How far the last log has been read. A file is read in blocks of some 64 KB.
    [[nodiscard]] ReadingProgress readingProgress() const;

  private:
    std::unique_ptr<CallLogReaderState> state_;
};

/// Whether a file that begins with these bytes is likely to be a call log: whether its first line
/// is a JSON object, on one line, with the field "call". A few hundred bytes are enough where that
/// field comes first, as it does in what `CallLogWriter` writes.
[[nodiscard]] PELLUVIA_EXPORT bool looksLikeCallLog(std::string_view beginning);

} // namespace pelluvia
