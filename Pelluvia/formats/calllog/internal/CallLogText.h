// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/JSONText.h>

#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/model/Report.h>
#include <Pelluvia/system/OutputFile.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstdint>
#include <string_view>

namespace pelluvia {

/// The arguments of calls as they stand in a call log.
///
/// Dictionaries and arrays are followed as deep as they nest. What a log cannot show, wrapped
/// records of other types than `GPSPoint`, nil inside an array and arrays of more than
/// `callLogLimits::elements`, is left out.
///
/// The file is borrowed. Threads: as for the file.
class CallLogText {
  public:
    explicit CallLogText(OutputFile &file) noexcept : file_(file), json_(file) {}

    /// Text that is JSON already.
    void raw(std::string_view json) { json_.raw(json); }
    void integer(std::int64_t value) { json_.integer(value); }
    /// The five fields of a point, in their order.
    void point(const GPSPoint &point);
    /// The entries in their order; null is nil.
    void dictionary(const Dictionary *dictionary);
    /// A text, an error object, or nil.
    void report(const Report &report);

  private:
    void entries(const Dictionary &dictionary);
    void elements(const Array &array);
    void value(const Value &value);
    void error(const Error &error);
    void userInfo(const ErrorInfo &info);
    void errorValue(const ErrorValue &value);

    OutputFile &file_;
    JSONText json_;
};

} // namespace pelluvia
