// The files that a TLS context names: a trust store, an own certificate with its key for servers that ask for one, and
// lists of revoked certificates.
#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "testing/raw_server.h"
#include "thrown.h"
#include "transport/certificates.h"

namespace Pegasus {
namespace {

namespace fs = std::filesystem;

using Orvane::testing::Certificate;
using Orvane::testing::RawAction;
using Orvane::testing::RawServer;
using Orvane::testing::RawServerOptions;
using test::Authority;
using test::Catch;
using test::Thrown;

constexpr long kSerial = 77;

/// What the callbacks were told; they are plain functions, so this cannot be a test's own member.
std::vector<Uint32>& Errors() {
  static std::vector<Uint32> errors;
  return errors;
}
/// Goes by the result of the preliminary check.
Boolean Follow(SSLCertificateInfo& info) {
  Errors().push_back(info.getErrorCode());
  return info.getResponseCode() == 1;
}
Boolean Accept(SSLCertificateInfo& info) {
  Errors().push_back(info.getErrorCode());
  return true;
}

bool Saw(int error) {
  return std::find(Errors().begin(), Errors().end(), static_cast<Uint32>(error)) != Errors().end();
}

/// A key under a password, PEM.
std::string Encrypted(const std::string& keyPem, std::string password) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> in(BIO_new_mem_buf(keyPem.data(), static_cast<int>(keyPem.size())),
                                                     &BIO_free);
  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
      PEM_read_bio_PrivateKey(in.get(), nullptr, nullptr, nullptr), &EVP_PKEY_free);
  const std::unique_ptr<BIO, decltype(&BIO_free)> out(BIO_new(BIO_s_mem()), &BIO_free);
  PEM_write_bio_PKCS8PrivateKey(out.get(), key.get(), EVP_aes_256_cbc(), password.data(),
                                static_cast<int>(password.size()), nullptr, nullptr);
  char* data = nullptr;
  const long size = BIO_get_mem_data(out.get(), &data);
  return {data, static_cast<std::size_t>(size)};
}

class TlsFiles : public ::testing::Test {
 protected:
  TlsFiles() {
    std::string pattern = (fs::temp_directory_path() / "orvane-tls-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
    Errors().clear();
  }
  ~TlsFiles() override { fs::remove_all(folder_); }

  /// Path of a new file.
  String Write(const std::string& name, const std::string& content) const {
    const fs::path path = folder_ / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << content;
    return path.c_str();
  }
  String Path(const std::string& name) const { return (folder_ / name).c_str(); }

  /// A server with a certificate of `authority`.
  static RawServerOptions ServerOf(const Authority& authority, int tlsVersion = TLS1_3_VERSION) {
    RawServerOptions options;
    options.certificate = authority.Issue(kSerial);
    options.sessions = Orvane::testing::SessionPolicy::kForget;
    options.minTls = options.maxTls = tlsVersion;
    options.script.push_back({RawAction::Send("HTTP/1.1 500 Busy\r\nContent-Length: 0\r\n\r\n")});
    return options;
  }

  /// What connecting and one operation throw.
  static Thrown Connect(const RawServer& server, const SSLContext& context) {
    CIMClient client;
    return Catch([&] { client.connect("127.0.0.1", server.Port(), context, "", ""); });
  }
  static Thrown Converse(const RawServer& server, const SSLContext& context) {
    CIMClient client;
    return Catch([&] {
      client.connect("127.0.0.1", server.Port(), context, "", "");
      client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo"));
    });
  }

  static Thrown CannotConnect(const RawServer& server) {
    return {"CannotConnectException",
            "Cannot connect to 127.0.0.1:" + std::to_string(server.Port()) + ". Connection failed."};
  }

  const Authority authority_;
  const Thrown kAnswered_{"CIMClientHTTPErrorException", "HTTP Error (500 Busy)."};

 private:
  fs::path folder_;
};

// Trust

TEST_F(TlsFiles, TrustStoreAloneDecides) {
  const RawServer server(ServerOf(authority_));
  const Authority stranger;
  const SSLContext trusting(Write("trust.pem", authority_.CertificatePem()), nullptr);
  const SSLContext doubting(Write("stranger.pem", stranger.CertificatePem()), nullptr);
  EXPECT_EQ(Connect(server, trusting), Thrown());
  EXPECT_EQ(Connect(server, doubting), CannotConnect(server));
}

TEST_F(TlsFiles, TrustStoreMayBeADirectory) {
  const RawServer server(ServerOf(authority_));
  Write("trust/" + authority_.NameHash() + ".0", authority_.CertificatePem());
  Write("empty/readme", "");
  EXPECT_EQ(Connect(server, SSLContext(Path("trust"), nullptr)), Thrown());
  EXPECT_EQ(Connect(server, SSLContext(Path("empty"), nullptr)), CannotConnect(server));
}

TEST_F(TlsFiles, CallbackHasTheLastWordOverTheTrustStore) {
  const RawServer server(ServerOf(authority_));
  const Authority stranger;
  const SSLContext following(Write("trust.pem", authority_.CertificatePem()), &Follow);
  EXPECT_EQ(Connect(server, following), Thrown());
  EXPECT_EQ(Errors(), (std::vector<Uint32>{X509_V_OK, X509_V_OK}));

  const String other = Write("stranger.pem", stranger.CertificatePem());
  EXPECT_EQ(Connect(server, SSLContext(other, &Follow)), CannotConnect(server));
  EXPECT_EQ(Connect(server, SSLContext(other, &Accept)), Thrown());
}

TEST_F(TlsFiles, UnusableTrustStoreIsFoundOutWhenConnecting) {
  const RawServer server(ServerOf(authority_));
  const String garbage = Write("garbage.pem", "no certificate");
  for (const String& path : {Path("missing.pem"), garbage}) {
    const SSLContext context(path, nullptr);
    const Thrown unusable{"SSLException",
                          "SSL Exception: Could not load certificates in to trust store " + test::Utf8(path) + "."};
    CIMClient client;
    const auto connect = [&] { client.connect("127.0.0.1", server.Port(), context, "", ""); };
    EXPECT_EQ(Catch(connect), unusable);
    EXPECT_EQ(Catch(connect), unusable) << "a failed connect leaves the client as it was";
    client.connect("127.0.0.1", server.Port(), SSLContext("", nullptr), "", "");
  }
}

// The client's own certificate

class OwnCertificate : public TlsFiles, public ::testing::WithParamInterface<int> {
 protected:
  /// A server that asks for a certificate of the authority.
  RawServerOptions Demanding() const {
    RawServerOptions options = ServerOf(authority_, GetParam());
    options.clientAuthority = authority_.CertificatePem();
    return options;
  }
  /// A server of TLS 1.2 ends the handshake; with 1.3 the client's part of it is over before the server looks.
  Thrown Refused(const RawServer& server) const {
    if (GetParam() == TLS1_2_VERSION) return CannotConnect(server);
    return {"CIMClientMalformedHTTPException", "Connection closed by CIM Server."};
  }
};

TEST_P(OwnCertificate, IsShownToAServerThatAsksForIt) {
  const Certificate own = authority_.Issue(2);
  const RawServer server(Demanding());
  const String certificate = Write("own.pem", own.certificatePem);
  const String key = Write("own.key", own.privateKeyPem);
  EXPECT_EQ(Converse(server, SSLContext("", certificate, key, nullptr, "")), kAnswered_);
  ASSERT_EQ(server.Requests().size(), 1U);
}

TEST_P(OwnCertificate, MayStandInOneFileWithItsKey) {
  const Certificate own = authority_.Issue(2);
  const RawServer server(Demanding());
  const String both = Write("both.pem", own.certificatePem + own.privateKeyPem);
  EXPECT_EQ(Converse(server, SSLContext("", both, "", nullptr, "")), kAnswered_);
}

TEST_P(OwnCertificate, ServerRefusesAClientThatHasNoneOrAStrangers) {
  const RawServer server(Demanding());
  EXPECT_EQ(Converse(server, SSLContext("", nullptr)), Refused(server));
  const Certificate own = Authority().Issue(2);
  const String both = Write("both.pem", own.certificatePem + own.privateKeyPem);
  EXPECT_EQ(Converse(server, SSLContext("", both, "", nullptr, "")), Refused(server));
  EXPECT_TRUE(server.Requests().empty());
}

INSTANTIATE_TEST_SUITE_P(Versions, OwnCertificate, ::testing::Values(TLS1_2_VERSION, TLS1_3_VERSION),
                         [](const auto& version) { return version.param == TLS1_2_VERSION ? "Tls12" : "Tls13"; });

TEST_F(TlsFiles, MissingCertificateOrKeyIsFoundOutAtConstruction) {
  const String present = Write("own.pem", authority_.Issue(2).certificatePem);
  const String missing = Path("missing.pem");
  const Thrown refused{"SSLException",
                       "SSL Exception: Could not access server certificate in " + test::Utf8(missing) + "."};
  EXPECT_EQ(Catch([&] { const SSLContext context("", missing, "", nullptr, ""); }), refused);
  EXPECT_EQ(Catch([&] { const SSLContext context("", present, missing, nullptr, ""); }), refused);
  EXPECT_EQ(Catch([&] { const SSLContext context("", present, missing, "", nullptr, ""); }), refused);
}

TEST_F(TlsFiles, CertificateThatIsNoneOrHasAnotherKeyIsFoundOutWhenConnecting) {
  const RawServer server(ServerOf(authority_));
  const Certificate own = authority_.Issue(2);
  const String certificate = Write("own.pem", own.certificatePem);
  const String garbage = Write("garbage.pem", "neither certificate nor key");
  const String otherKey = Write("other.key", authority_.Issue(3).privateKeyPem);
  const String lockedKey = Write("locked.key", Encrypted(own.privateKeyPem, "secret"));
  EXPECT_EQ(
      Connect(server, SSLContext("", garbage, "", nullptr, "")),
      (Thrown{"SSLException", "SSL Exception: Could not access server certificate in " + test::Utf8(garbage) + "."}));
  // A key under a password counts as unusable: nobody is there to be asked for it.
  for (const String& key : {certificate, garbage, otherKey, lockedKey}) {
    EXPECT_EQ(Connect(server, SSLContext("", certificate, key, nullptr, "")),
              (Thrown{"SSLException", "SSL Exception: Could not access private key in " + test::Utf8(key) + "."}));
  }
}

// Revocation

class Revocation : public TlsFiles {
 protected:
  SSLContext Context(const String& lists, SSLCertificateVerifyFunction* verify) const {
    return SSLContext(Write("trust.pem", authority_.CertificatePem()), "", "", lists, verify, "");
  }
};

TEST_F(Revocation, RevokedCertificateIsRefused) {
  const RawServer server(ServerOf(authority_));
  const String lists = Write("lists.pem", authority_.RevocationList({5, kSerial}));
  EXPECT_EQ(Connect(server, Context(lists, nullptr)), CannotConnect(server));
  EXPECT_EQ(Connect(server, Context(lists, &Follow)), CannotConnect(server));
  EXPECT_TRUE(Saw(SSLCertificateInfo::V_ERR_CERT_REVOKED));
  EXPECT_EQ(Connect(server, Context(lists, &Accept)), Thrown()) << "the callback has the last word";
}

TEST_F(Revocation, CertificateThatIsNotOnTheListPasses) {
  const RawServer server(ServerOf(authority_));
  const String lists = Write("lists.pem", authority_.RevocationList({kSerial + 1}));
  EXPECT_EQ(Connect(server, Context(lists, nullptr)), Thrown());
  EXPECT_EQ(Connect(server, Context(lists, &Follow)), Thrown());
  EXPECT_FALSE(Saw(SSLCertificateInfo::V_ERR_CERT_REVOKED));
}

TEST_F(Revocation, ListsMayStandInADirectory) {
  const RawServer server(ServerOf(authority_));
  Write("revoked/" + authority_.NameHash() + ".r0", authority_.RevocationList({kSerial}));
  Write("good/" + authority_.NameHash() + ".r0", authority_.RevocationList({}));
  EXPECT_EQ(Connect(server, Context(Path("revoked"), nullptr)), CannotConnect(server));
  EXPECT_EQ(Connect(server, Context(Path("good"), nullptr)), Thrown());
}

TEST_F(Revocation, ListOfAnotherAuthorityDoesNotCount) {
  const RawServer server(ServerOf(authority_));
  const String lists = Write("lists.pem", Authority().RevocationList({}));
  EXPECT_EQ(Connect(server, Context(lists, &Follow)), CannotConnect(server));
  EXPECT_TRUE(Saw(SSLCertificateInfo::V_ERR_CRL_SIGNATURE_FAILURE));
}

TEST_F(Revocation, WithoutAListOfItsIssuerACertificateIsRefused) {
  const RawServer server(ServerOf(authority_));
  Write("empty/readme", "");
  EXPECT_EQ(Connect(server, Context(Path("empty"), &Follow)), CannotConnect(server));
  EXPECT_TRUE(Saw(SSLCertificateInfo::V_ERR_UNABLE_TO_GET_CRL));
}

TEST_F(Revocation, ContextHoldsTheListsAndRefusesAFileWithoutAny) {
  const String lists = Write("lists.pem", authority_.RevocationList({}));
  const SSLContext context = Context(lists, nullptr);
  EXPECT_EQ(context.getCRLPath(), lists);
  ASSERT_NE(context.getCRLStore(), nullptr);
  EXPECT_EQ(SSLContext(context).getCRLStore(), context.getCRLStore());
  for (const String& path : {Path("missing.pem"), Write("garbage.pem", "no list")}) {
    EXPECT_EQ(Catch([&] { Context(path, nullptr); }),
              (Thrown{"SSLException", "SSL Exception: Could not load revocation lists in " + test::Utf8(path) + "."}));
  }
}

TEST_F(Revocation, ListsThatAreGoneMeanwhileAreFoundOutWhenConnecting) {
  const RawServer server(ServerOf(authority_));
  const String lists = Write("lists.pem", authority_.RevocationList({}));
  const SSLContext context = Context(lists, nullptr);
  fs::remove(test::Utf8(lists));
  EXPECT_EQ(Connect(server, context),
            (Thrown{"SSLException", "SSL Exception: Could not load revocation lists in " + test::Utf8(lists) + "."}));
}

TEST(CallbackInfo, TellsWhatItWasGiven) {
  const std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store(X509_STORE_new(), &X509_STORE_free);
  const SSLCallbackInfo both(&Accept, store.get());
  EXPECT_EQ(both.GetVerifyFunction(), &Accept);
  EXPECT_EQ(both.GetCrlStore(), store.get());
  const SSLCallbackInfo none(nullptr);
  EXPECT_EQ(none.GetVerifyFunction(), nullptr);
  EXPECT_EQ(none.GetCrlStore(), nullptr);
}

}  // namespace
}  // namespace Pegasus
