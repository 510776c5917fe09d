#include "tests/support/https/throw_away_authority.h"

#include <openssl/evp.h>
#include <openssl/pem.h>

#include <memory>
#include <stdexcept>

#include "tests/support/https/openssl_free.h"

namespace tessum {
namespace {

constexpr long kDay = 86400;

using Key = std::unique_ptr<EVP_PKEY, OpenSSLFree>;
using Certificate = std::unique_ptr<X509, OpenSSLFree>;

void require(bool isDone, const char* what) {
  if (!isDone) throw std::runtime_error(what);
}

Key newKey() {
  Key key(EVP_EC_gen("P-256"));
  require(key != nullptr, "no key");
  return key;
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, OpenSSLFree> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
  require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "no extension");
}

// A certificate for `key` called `name`, without extensions and signature. `issuer` is null for a
// self-signed one.
Certificate newCertificate(const Key& key, const std::string& name, long serial, int days,
                           X509* issuer) {
  Certificate certificate(X509_new());
  X509* const raw = certificate.get();
  X509_set_version(raw, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(raw), serial);
  X509_gmtime_adj(X509_getm_notBefore(raw), -kDay);
  X509_gmtime_adj(X509_getm_notAfter(raw), (days - 1) * kDay);
  X509_set_pubkey(raw, key.get());
  X509_NAME_add_entry_by_txt(X509_get_subject_name(raw), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(raw, X509_get_subject_name(issuer == nullptr ? raw : issuer));
  return certificate;
}

template <typename Write>
std::string pem(Write write) {
  const std::unique_ptr<BIO, OpenSSLFree> memory(BIO_new(BIO_s_mem()));
  require(write(memory.get()) == 1, "no PEM");
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &bytes);
  return {bytes, static_cast<std::size_t>(size)};
}

std::string pemOf(const Certificate& certificate) {
  return pem([&](BIO* out) { return PEM_write_bio_X509(out, certificate.get()); });
}

}  // namespace

struct ThrowAwayAuthority::Keys {
  explicit Keys(const std::string& name)
      : key(newKey()), certificate(newCertificate(key, name, 1, 30, nullptr)) {}

  const Key key;
  const Certificate certificate;
};

ThrowAwayAuthority::ThrowAwayAuthority(const std::string& name)
    : keys_(std::make_unique<Keys>(name)) {
  X509* const own = keys_->certificate.get();
  addExtension(own, own, NID_basic_constraints, "critical,CA:TRUE");
  addExtension(own, own, NID_key_usage, "critical,keyCertSign,cRLSign");
  require(X509_sign(own, keys_->key.get(), EVP_sha256()) > 0, "no signature");
}

ThrowAwayAuthority::~ThrowAwayAuthority() = default;

std::string ThrowAwayAuthority::certificate() const {
  return pemOf(keys_->certificate);
}

ThrowAwayAuthority::Identity ThrowAwayAuthority::issue(const std::string& name, int days) const {
  const Key key = newKey();
  X509* const issuer = keys_->certificate.get();
  const Certificate certificate = newCertificate(key, "Server", 2, days, issuer);
  addExtension(certificate.get(), issuer, NID_subject_alt_name, name);
  require(X509_sign(certificate.get(), keys_->key.get(), EVP_sha256()) > 0, "no signature");
  return {pemOf(certificate), pem([&](BIO* out) {
            return PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
          })};
}

}  // namespace tessum
