// What a TLS connection is built from: trust, own certificate, and the callback that judges the server's certificate.
// Declares SSLContext, the certificate description handed to the callback, and the callback's type.
#pragma once

#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/Config.h>
#include <Pegasus/Common/Linkage.h>
#include <Pegasus/Common/String.h>

#include <memory>

struct x509_store_st;
typedef struct x509_store_st X509_STORE;

namespace Pegasus {

class SSLCertificateInfo;

namespace transport {
class CertificateInfoFactory;
}

/// Judges one certificate of the server's chain: true goes on (overriding an error), false ends the handshake.
/// May be called several times per certificate. An exception that leaves it counts as false.
typedef Boolean(SSLCertificateVerifyFunction)(SSLCertificateInfo& certInfo);

/// What the verification callback is told about one certificate. Threads: an object belongs to one thread at a time;
/// copies are independent. The callback runs on the thread that connects.
class PEGASUS_COMMON_LINKAGE SSLCertificateInfo {
 public:
  /// @{ Verification results, numbered as OpenSSL numbers them (X509_V_*).
  static constexpr int V_OK = 0;
  static constexpr int V_ERR_UNABLE_TO_GET_ISSUER_CERT = 2;
  static constexpr int V_ERR_UNABLE_TO_GET_CRL = 3;
  static constexpr int V_ERR_UNABLE_TO_DECRYPT_CERT_SIGNATURE = 4;
  static constexpr int V_ERR_UNABLE_TO_DECRYPT_CRL_SIGNATURE = 5;
  static constexpr int V_ERR_UNABLE_TO_DECODE_ISSUER_PUBLIC_KEY = 6;
  static constexpr int V_ERR_CERT_SIGNATURE_FAILURE = 7;
  static constexpr int V_ERR_CRL_SIGNATURE_FAILURE = 8;
  static constexpr int V_ERR_CERT_NOT_YET_VALID = 9;
  static constexpr int V_ERR_CERT_HAS_EXPIRED = 10;
  static constexpr int V_ERR_CRL_NOT_YET_VALID = 11;
  static constexpr int V_ERR_CRL_HAS_EXPIRED = 12;
  static constexpr int V_ERR_ERROR_IN_CERT_NOT_BEFORE_FIELD = 13;
  static constexpr int V_ERR_ERROR_IN_CERT_NOT_AFTER_FIELD = 14;
  static constexpr int V_ERR_ERROR_IN_CRL_LAST_UPDATE_FIELD = 15;
  static constexpr int V_ERR_ERROR_IN_CRL_NEXT_UPDATE_FIELD = 16;
  static constexpr int V_ERR_OUT_OF_MEM = 17;
  static constexpr int V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT = 18;
  static constexpr int V_ERR_SELF_SIGNED_CERT_IN_CHAIN = 19;
  static constexpr int V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY = 20;
  static constexpr int V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE = 21;
  static constexpr int V_ERR_CERT_CHAIN_TOO_LONG = 22;
  static constexpr int V_ERR_CERT_REVOKED = 23;
  static constexpr int V_ERR_INVALID_CA = 79;
  static constexpr int V_ERR_PATH_LENGTH_EXCEEDED = 25;
  static constexpr int V_ERR_INVALID_PURPOSE = 26;
  static constexpr int V_ERR_CERT_UNTRUSTED = 27;
  static constexpr int V_ERR_CERT_REJECTED = 28;
  static constexpr int V_ERR_SUBJECT_ISSUER_MISMATCH = 29;
  static constexpr int V_ERR_AKID_SKID_MISMATCH = 30;
  static constexpr int V_ERR_AKID_ISSUER_SERIAL_MISMATCH = 31;
  static constexpr int V_ERR_KEYUSAGE_NO_CERTSIGN = 32;
  static constexpr int V_ERR_APPLICATION_VERIFICATION = 50;
  /// @}

  /// A description that says nothing of validity, version or serial number: those are null or 0.
  /// @param errorDepth 0 for the server's own certificate, 1 for its issuer, and so on
  /// @param errorCode one of the V_ constants
  /// @param respCode 1 when the preliminary check passed, 0 when not
  SSLCertificateInfo(const String subjectName, const String issuerName, const int errorDepth, const int errorCode,
                     const int respCode);
  SSLCertificateInfo(const SSLCertificateInfo& certificateInfo);
  ~SSLCertificateInfo();

  /// One-line form, at most 255 characters: `/C=DE/O=Example/CN=cmm.example`.
  String getSubjectName() const;
  /// One-line form as getSubjectName().
  String getIssuerName() const;
  /// X.509 version, counted from 0: 2 stands for version 3.
  Uint32 getVersionNumber() const;
  /// Serial number, -1 if it does not fit.
  long getSerialNumber() const;
  /// Start of the certificate's validity, a timestamp in UTC.
  CIMDateTime getNotBefore() const;
  /// End of the certificate's validity, a timestamp in UTC.
  CIMDateTime getNotAfter() const;
  /// Distance from the server's own certificate, which has 0.
  Uint32 getErrorDepth() const;
  /// What the preliminary check found, one of the V_ constants.
  Uint32 getErrorCode() const;
  /// getErrorCode() in words.
  String getErrorString() const;
  /// 1 when the preliminary check passed, 0 when not.
  Uint32 getResponseCode() const;
  /// @param errorCode one of the V_ constants
  void setErrorCode(const int errorCode);
  /// @param respCode 1 when the preliminary check passed, 0 when not
  void setResponseCode(const int respCode);
  /// All of the above, one item a line.
  String toString() const;

 private:
  friend class transport::CertificateInfoFactory;

  struct Rep;

  explicit SSLCertificateInfo(std::unique_ptr<Rep> rep);
  SSLCertificateInfo& operator=(const SSLCertificateInfo&);

  std::unique_ptr<Rep> rep_;
};

/// What a connection's verification needs while a handshake runs. The store is borrowed. Threads: never changes, so
/// several may read it.
class PEGASUS_COMMON_LINKAGE SSLCallbackInfo {
 public:
  /// @param verifyCert may be null
  /// @param crlStore may be null; has to outlive this object
  explicit SSLCallbackInfo(SSLCertificateVerifyFunction* verifyCert, X509_STORE* crlStore = nullptr)
      : verifyCert_(verifyCert), crlStore_(crlStore) {}

  /// The function that judges certificates, or null.
  SSLCertificateVerifyFunction* GetVerifyFunction() const { return verifyCert_; }
  /// The revocation lists, or null.
  X509_STORE* GetCrlStore() const { return crlStore_; }

 private:
  SSLCertificateVerifyFunction* verifyCert_;
  X509_STORE* crlStore_;
};

/// The settings of TLS connections. A client keeps its own copy, so the caller's object may go once connect has
/// returned. Threads: never changes, so copies and one object alike may be used by several threads at a time.
class PEGASUS_COMMON_LINKAGE SSLContext {
 public:
  /// @param trustStore PEM file of trusted certificates, or directory of them under the hashes of their names; empty:
  ///   none, the system's are not consulted. First read by connect, which throws SSLException when it cannot be used.
  /// @param verifyCert the callback, which has the last word. Null: a trust store alone decides, and without one
  ///   nothing is checked.
  /// @param randomFile accepted, not needed
  SSLContext(const String& trustStore, SSLCertificateVerifyFunction* verifyCert,
             const String& randomFile = String::EMPTY);
  /// @param certPath own certificate (PEM) for servers that ask for one, with its chain behind it; empty for none
  /// @param keyPath its key (PEM, without a password); empty: looked for in certPath
  /// @throws SSLException when the certificate or the key cannot be read; connect throws it when they are no
  ///   certificate and its key
  SSLContext(const String& trustStore, const String& certPath, const String& keyPath,
             SSLCertificateVerifyFunction* verifyCert, const String& randomFile);
  /// @param crlPath PEM file of certificate revocation lists, or directory of them under the hashes of their issuers'
  ///   names; empty for none. With lists, a server's certificate that its issuer has revoked is refused
  ///   (V_ERR_CERT_REVOKED), and so is one whose issuer has no valid list (V_ERR_UNABLE_TO_GET_CRL), unless the
  ///   callback accepts it.
  /// @throws SSLException when the certificate, the key or the lists cannot be read
  SSLContext(const String& trustStore, const String& certPath, const String& keyPath, const String& crlPath,
             SSLCertificateVerifyFunction* verifyCert, const String& randomFile);
  SSLContext(const SSLContext& sslContext);
  ~SSLContext();

  /// The path as it was given, empty for none.
  String getTrustStore() const;
  /// The path as it was given, empty for none.
  String getCertPath() const;
  /// The path as it was given, empty for none.
  String getKeyPath() const;
  /// The path as it was given, empty for none.
  String getCRLPath() const;
  /// The revocation lists, null when none were named. Owned by the context.
  X509_STORE* getCRLStore() const;
  /// True when there is a trust store or a callback.
  Boolean isPeerVerificationEnabled() const;
  /// The callback as it was given, or null.
  SSLCertificateVerifyFunction* getSSLCertificateVerifyFunction() const;

 private:
  struct Rep;

  SSLContext& operator=(const SSLContext&);

  std::shared_ptr<const Rep> rep_;
};

}  // namespace Pegasus
