// SPDX-License-Identifier: MIT
#include "Tests/Support/TestCertificate.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace QVTest
{
namespace
{
void Require(bool bSuccess)
{
	if (!bSuccess)
	{
		throw std::runtime_error("no certificate could be made");
	}
}

FTestCertificate MakeBlank(const std::string& Name, long ValidSeconds)
{
	FTestCertificate Made{{EVP_EC_gen("P-256"), &EVP_PKEY_free}, {X509_new(), &X509_free}};
	Require(Made.Key != nullptr && Made.Certificate != nullptr);
	X509* const Certificate = Made.Certificate.get();
	X509_set_version(Certificate, X509_VERSION_3);
	ASN1_INTEGER_set(X509_get_serialNumber(Certificate), static_cast<long>(std::hash<std::string>()(Name) >> 34));
	X509_gmtime_adj(X509_getm_notBefore(Certificate), -2 * SecondsPerDay);
	X509_gmtime_adj(X509_getm_notAfter(Certificate), ValidSeconds);
	X509_set_pubkey(Certificate, Made.Key.get());
	const auto* Letters = reinterpret_cast<const unsigned char*>(Name.data());
	X509_NAME_add_entry_by_txt(
		X509_get_subject_name(Certificate), "CN", MBSTRING_UTF8, Letters, static_cast<int>(Name.size()), -1, 0);
	return Made;
}

void AddExtension(const FTestCertificate& To, int Kind, const std::string& Value)
{
	X509V3_CTX Context;
	X509V3_set_ctx(&Context, nullptr, To.Certificate.get(), nullptr, nullptr, 0);
	const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> Extension(
		X509V3_EXT_conf_nid(nullptr, &Context, Kind, Value.c_str()), &X509_EXTENSION_free);
	Require(Extension != nullptr && X509_add_ext(To.Certificate.get(), Extension.get(), -1) == 1);
}

void Sign(const FTestCertificate& Made, const FTestCertificate& By)
{
	X509_set_issuer_name(Made.Certificate.get(), X509_get_subject_name(By.Certificate.get()));
	Require(X509_sign(Made.Certificate.get(), By.Key.get(), EVP_sha256()) > 0);
}
} // namespace

std::string FTestCertificate::ToPem() const
{
	const std::unique_ptr<BIO, decltype(&BIO_free)> Memory(BIO_new(BIO_s_mem()), &BIO_free);
	Require(Memory != nullptr && PEM_write_bio_X509(Memory.get(), Certificate.get()) == 1);
	char* Bytes = nullptr;
	const long Size = BIO_get_mem_data(Memory.get(), &Bytes);
	return {Bytes, static_cast<std::size_t>(Size)};
}

FTestCertificate MakeAuthority(const std::string& Name)
{
	const FTestCertificate Made = MakeBlank(Name, SecondsPerDay);
	AddExtension(Made, NID_basic_constraints, "critical,CA:TRUE");
	AddExtension(Made, NID_key_usage, "critical,keyCertSign");
	Sign(Made, Made);
	return Made;
}

FTestCertificate MakeCertificate(const FTestCertificate& Authority, const std::string& Host, long ValidSeconds)
{
	const FTestCertificate Made = MakeBlank(Host, ValidSeconds);
	AddExtension(Made, NID_subject_alt_name, Host);
	Sign(Made, Authority);
	return Made;
}
} // namespace QVTest
