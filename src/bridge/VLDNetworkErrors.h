#pragma once

#include <cstdint>
#include <glib.h>

namespace velder {

// The engine reports failures as GErrors of GIO, libsoup, TLS and its own domains; the window layer and the
// error page speak network error numbers. These turn the one into the other.
namespace VLDNetworkErrors {

inline constexpr std::int32_t aborted = -3; // a stop, or a load replaced by another: never reported
inline constexpr std::int32_t failed = -2; // anything without a number of its own

// `committed` says whether the page had begun to arrive when it failed (a timeout or a cut then reads
// differently); `redirects` counts the redirects this load followed.
std::int32_t codeForLoadError(const GError* error, bool committed, unsigned redirects);

// A refused certificate's GTlsCertificateFlags, the most serious flag first.
std::int32_t codeForCertificateFlags(unsigned flags);

} // namespace VLDNetworkErrors

} // namespace velder
