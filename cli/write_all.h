// Writes to a descriptor without the streams of the C++ library, which may be busy or redirected.
#pragma once

#include <string_view>

namespace Orvane::cli {

/// Writes @p text wholly, in one piece where the system allows it. @return  false when it could not.
bool WriteAll(int fd, std::string_view text);

}  // namespace Orvane::cli
