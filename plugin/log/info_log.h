/// How the plug-in's own classes log: at level Info, under one function tag, and only while there is a log.
#pragma once

/// One operation's view of the log. Every line looks for the log anew, because logging may be switched on at any time.
class InfoLog {
 public:
  constexpr explicit InfoLog(const wchar_t* function_tag) : function_tag_(function_tag) {}

  /// Writes one line; `format` as for FormatWide, cut at 1000 characters. A line for which there is no memory is lost:
  /// a light must not fail because its log line did.
  void operator()(const wchar_t* format, ...) const;

 private:
  const wchar_t* function_tag_;
};
