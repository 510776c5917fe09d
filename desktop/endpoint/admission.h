// Whom the endpoint answers unless it is opened to everyone.
//
// The port is open to every program that can reach it, and a web page can have the browser send
// requests to it: directly, where the browser names the page's origin, or under a host name of its
// maker that leads to this computer, where the browser names that host. So both are checked.

#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "core/http/http_admission.h"

namespace tessum {

// How long a request may take to arrive, and its answer to be taken.
inline constexpr double kEndpointPatienceSeconds = 30;

// How many connections the endpoint holds.
inline constexpr std::size_t kMostEndpointConnections = 256;

// How long the head of a request may be. Browsers send cookies of 4096 bytes, and few of them.
inline constexpr std::size_t kMostEndpointHeadBytes = 65536;

// Why `visitor` is not answered; absent for a program of this computer that names one host, of
// this computer and with the port, and either no origin or an http origin of such a host. Any
// thread.
[[nodiscard]] std::optional<std::string> refusalOf(const HTTPVisitor& visitor);

// That rule, with these limits.
[[nodiscard]] HTTPAdmission admissionOfThisComputer();

}  // namespace tessum
