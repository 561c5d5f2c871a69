#pragma once

#include <QByteArray>
#include <QByteArrayView>

struct evp_md_ctx_st;

namespace quorvane {

/// Incremental SHA-256 (FIPS 180-4). Not shared between threads.
class Sha256 {
  public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void add(QByteArrayView bytes);

    /// The 32 digest bytes. Call once.
    QByteArray finish();

    static QByteArray digest(QByteArrayView bytes);

  private:
    evp_md_ctx_st* context_;
};

/// `count` bytes from the system's cryptographic random source.
QByteArray secureRandomBytes(int count);

} // namespace quorvane
