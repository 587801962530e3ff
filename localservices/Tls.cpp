// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Tls.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>

namespace LocalServices {

std::shared_ptr<SSL_CTX> createTls(const Certificate &certificate)
{
    if (certificate.certificate.isEmpty())
        return nullptr;
    std::shared_ptr<SSL_CTX> tls(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    BIO *const pem = BIO_new_mem_buf(certificate.certificate.constData(), certificate.certificate.size());
    X509 *const x509 = PEM_read_bio_X509(pem, nullptr, nullptr, nullptr);
    SSL_CTX_use_certificate(tls.get(), x509);
    X509_free(x509);
    BIO_free(pem);
    BIO *const keyPem = BIO_new_mem_buf(certificate.privateKey.constData(), certificate.privateKey.size());
    EVP_PKEY *const key = PEM_read_bio_PrivateKey(keyPem, nullptr, nullptr, nullptr);
    SSL_CTX_use_PrivateKey(tls.get(), key);
    EVP_PKEY_free(key);
    BIO_free(keyPem);
    return tls;
}

} // namespace LocalServices
