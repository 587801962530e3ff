// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Certificates.h"

#include <QHostAddress>

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace LocalServices {

namespace {

struct Free
{
    void operator()(BIO *bio) const { BIO_free(bio); }
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
    void operator()(EVP_PKEY_CTX *context) const { EVP_PKEY_CTX_free(context); }
    void operator()(X509 *certificate) const { X509_free(certificate); }
    void operator()(X509_EXTENSION *extension) const { X509_EXTENSION_free(extension); }
};
template <typename T> using Owned = std::unique_ptr<T, Free>;

Owned<EVP_PKEY> createKey()
{
    const Owned<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new_id(EVP_PKEY_EC, nullptr));
    EVP_PKEY_keygen_init(context.get());
    EVP_PKEY_CTX_set_ec_paramgen_curve_nid(context.get(), NID_X9_62_prime256v1);
    EVP_PKEY *key = nullptr;
    EVP_PKEY_keygen(context.get(), &key);
    return Owned<EVP_PKEY>(key);
}

void setCommonName(X509_NAME *name, const QByteArray &text)
{
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(text.constData()), -1, -1, 0);
}

void addExtension(X509 *certificate, int nid, const QByteArray &value)
{
    const Owned<X509_EXTENSION> extension(X509V3_EXT_conf_nid(nullptr, nullptr, nid, value.constData()));
    X509_add_ext(certificate, extension.get(), -1);
}

void setSerialNumber(X509 *certificate)
{
    quint32 number = 0;
    RAND_bytes(reinterpret_cast<unsigned char *>(&number), sizeof(number));
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), long(number >> 1));
}

// Returns a certificate without issuer and signature.
Owned<X509> createCertificate(const QByteArray &commonName, EVP_PKEY *key, const QDateTime &until)
{
    Owned<X509> certificate(X509_new());
    X509_set_version(certificate.get(), 2);
    setSerialNumber(certificate.get());
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    constexpr long day = 86400;
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), long(until.toSecsSinceEpoch() - now));
    setCommonName(X509_get_subject_name(certificate.get()), commonName);
    X509_set_pubkey(certificate.get(), key);
    return certificate;
}

QByteArray subjectAltName(const QString &host)
{
    const bool isAddress = !QHostAddress(host).isNull();
    return (isAddress ? "IP:" : "DNS:") + host.toLatin1();
}

template <typename Write> QByteArray toPem(Write write)
{
    const Owned<BIO> bio(BIO_new(BIO_s_mem()));
    write(bio.get());
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return QByteArray(data, int(size));
}

QByteArray toPem(X509 *certificate)
{
    return toPem([certificate](BIO *bio) { PEM_write_bio_X509(bio, certificate); });
}

QByteArray toPem(EVP_PKEY *key)
{
    return toPem(
        [key](BIO *bio) { PEM_write_bio_PrivateKey(bio, key, nullptr, nullptr, 0, nullptr, nullptr); });
}

} // namespace

struct Authority::Identity
{
    Owned<EVP_PKEY> key;
    Owned<X509> certificate;
};

Authority::Authority()
    : m_identity(std::make_unique<Identity>())
{
    m_identity->key = createKey();
    m_identity->certificate =
        createCertificate(QByteArrayLiteral("Local Services"), m_identity->key.get(), defaultEnd());
    X509 *const certificate = m_identity->certificate.get();
    X509_set_issuer_name(certificate, X509_get_subject_name(certificate));
    addExtension(certificate, NID_basic_constraints, QByteArrayLiteral("critical,CA:TRUE"));
    X509_sign(certificate, m_identity->key.get(), EVP_sha256());
}

Authority::~Authority() = default;

QByteArray Authority::certificate() const
{
    return toPem(m_identity->certificate.get());
}

Certificate Authority::issue(const QString &host, const QDateTime &until) const
{
    const Owned<EVP_PKEY> key = createKey();
    const Owned<X509> certificate = createCertificate(host.toUtf8(), key.get(), until);
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(m_identity->certificate.get()));
    addExtension(certificate.get(), NID_subject_alt_name, subjectAltName(host));
    X509_sign(certificate.get(), m_identity->key.get(), EVP_sha256());
    return {toPem(certificate.get()), toPem(key.get())};
}

Certificate Authority::selfSigned(const QString &host)
{
    const Owned<EVP_PKEY> key = createKey();
    const Owned<X509> certificate = createCertificate(host.toUtf8(), key.get(), defaultEnd());
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get()));
    addExtension(certificate.get(), NID_subject_alt_name, subjectAltName(host));
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    return {toPem(certificate.get()), toPem(key.get())};
}

QDateTime Authority::defaultEnd()
{
    return QDateTime::currentDateTimeUtc().addDays(30);
}

} // namespace LocalServices
