#include "foundation/Crypto.h"

#include "foundation/Error.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

namespace quorvane {

namespace {

void require(bool succeeded) {
    if (!succeeded)
        throw Error(QStringLiteral("Şifreleme kitaplığı hatası"));
}

} // namespace

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    require(context_ != nullptr && EVP_DigestInit_ex(context_, EVP_sha256(), nullptr) == 1);
}

Sha256::~Sha256() {
    EVP_MD_CTX_free(context_);
}

void Sha256::add(QByteArrayView bytes) {
    require(EVP_DigestUpdate(context_, bytes.data(), static_cast<size_t>(bytes.size())) == 1);
}

QByteArray Sha256::finish() {
    QByteArray digest(32, Qt::Uninitialized);
    require(EVP_DigestFinal_ex(context_, reinterpret_cast<unsigned char*>(digest.data()),
                               nullptr) == 1);
    return digest;
}

QByteArray Sha256::digest(QByteArrayView bytes) {
    Sha256 hash;
    hash.add(bytes);
    return hash.finish();
}

QByteArray secureRandomBytes(int count) {
    QByteArray bytes(count, Qt::Uninitialized);
    require(RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), count) == 1);
    return bytes;
}

} // namespace quorvane
