// Frees what OpenSSL makes, for std::unique_ptr.

#pragma once

#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace tessum {

struct OpenSSLFree {
  void operator()(BIO* bio) const { BIO_free(bio); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(SSL* ssl) const { SSL_free(ssl); }
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
};

}  // namespace tessum
