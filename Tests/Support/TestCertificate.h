// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <string>

namespace QVTest
{
/** What a server shows, and the key that goes with it. */
struct FTestCertificate
{
	std::shared_ptr<EVP_PKEY> Key;
	std::shared_ptr<X509> Certificate;

	/** As it stands in a file. */
	std::string ToPem() const;
};

constexpr long SecondsPerDay = 86400;

/** One that may sign others, valid today. */
FTestCertificate MakeAuthority(const std::string& Name);
/** For a host as "IP:127.0.0.1" or "DNS:example.org", from yesterday until so many seconds from now. */
FTestCertificate MakeCertificate(const FTestCertificate& Authority, const std::string& Host, long ValidSeconds);
} // namespace QVTest
