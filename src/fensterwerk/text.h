// Text of the program as text of Qt.
#pragma once

#include <QString>
#include <string_view>

namespace zek {

inline QString Q(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace zek
