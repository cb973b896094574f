// What the host machine says about locale and time zone, for devices that are opened without their own.
#pragma once

#include <string>
#include <string_view>

namespace zb::internal
{
/// BCP 47 name from the first of LC_ALL, LC_TIME and LANG that is set; "en-US" for none, "C" and "POSIX".
std::string hostLocale();

/// tzdata name from TZ, /etc/timezone or the link /etc/localtime, the first that names a known zone; else "UTC".
std::string hostZone();

/// Whether tzdata has a zone of this name ("UTC" always counts).
bool isZoneName(std::string_view name);

/// BCP 47 name of a POSIX one: "de_DE.UTF-8@euro" gives "de-DE", "sr_RS@latin" gives "sr-Latn-RS".
std::string localeName(std::string_view posixName);
} // namespace zb::internal
