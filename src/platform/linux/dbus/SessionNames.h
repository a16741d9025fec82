#pragma once

#include <QString>

/// How the session's one helper is found on the session bus.
namespace SessionNames {

using namespace Qt::StringLiterals;

inline const QString helper = u"com.zemra.tavelor.helper"_s;
inline const QString helperPath = u"/com/zemra/tavelor/Helper"_s;
inline const QString helperInterface = u"com.zemra.tavelor.Helper"_s;

} // namespace SessionNames
