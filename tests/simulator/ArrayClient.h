#ifndef BREVAN_TESTS_SIMULATOR_ARRAYCLIENT_H
#define BREVAN_TESTS_SIMULATOR_ARRAYCLIENT_H

#include "Fields.h"

#include "simulator/ArrayServer.h"

#include <string>

namespace brevan::sim::test {

struct Reply {
    unsigned status = 0;
    int code = 0;
    std::string description;
    Data data;  ///< absent where the reply has no "data"

    std::string text(const std::string& key) const { return data.at(key).text(); }
};

/// A client that is logged in and speaks to the array without a network. Paths are relative to the device.
class ArrayClient {
public:
    explicit ArrayClient(ArrayServer& server) : m_server(server) { logIn(); }

    void logIn()
    {
        const WireReply reply = m_server.handle(
            {"POST", "/deviceManager/rest/xxxx/sessions", "", "", R"({"username":"admin","password":"secret","scope":0})"});
        m_token = Data::parse(reply.body).at("data").at("iBaseToken").text();
        const std::string& cookie = reply.headers.at(0).second;
        m_cookie = cookie.substr(0, cookie.find(';'));
    }

    Reply send(const std::string& method, const std::string& path, const std::string& body = "")
    {
        return send({method, "/deviceManager/rest/" + m_server.deviceId() + path, m_token, m_cookie, body});
    }
    Reply send(const WireRequest& request)
    {
        const WireReply wire = m_server.handle(request);
        const Data body = Data::parse(wire.body);
        const Data error = body.at("error");
        return {wire.status, error.at("code").number(), error.at("description").text(),
                body.contains("data") ? body.at("data") : Data()};
    }
    Reply get(const std::string& path) { return send("GET", path); }
    Reply post(const std::string& path, const Fields& body) { return send("POST", path, body.dump()); }
    Reply put(const std::string& path, const Fields& body) { return send("PUT", path, body.dump()); }
    Reply remove(const std::string& path) { return send("DELETE", path); }
    /// Creates something that the array must accept; its ID.
    std::string make(const std::string& path, const Fields& body)
    {
        const Reply reply = post(path, body);
        if (reply.code != 0) {
            throw std::runtime_error(path + ": " + reply.description);
        }
        return reply.text("ID");
    }
    std::string makeLun(const std::string& name)
    {
        return make("/lun",
                    {{"NAME", name}, {"PARENTID", "0"}, {"CAPACITY", 2048}, {"ALLOCTYPE", 1}, {"INITIALALLOCCAPACITY", 0}});
    }
    Reply associate(const std::string& path, const std::string& owner, int type, const std::string& member)
    {
        return post(path, {{"ID", owner}, {"ASSOCIATEOBJTYPE", type}, {"ASSOCIATEOBJID", member}});
    }
    Reply putAssociation(const std::string& path, const std::string& view, int type, const std::string& member)
    {
        return put(path, {{"TYPE", 245}, {"ID", view}, {"ASSOCIATEOBJTYPE", type}, {"ASSOCIATEOBJID", member}});
    }

    std::string m_token;
    std::string m_cookie;

private:
    ArrayServer& m_server;
};

inline ServerOptions testOptions()
{
    ServerOptions options;
    options.password = "secret";
    return options;
}

/// An array with a client, for tests of single resources.
struct ArrayFixture {
    explicit ArrayFixture(ServerOptions options = testOptions()) : server(std::move(options)), client(server) {}
    ArrayServer server;
    ArrayClient client;
};

/// The objects that expose a LUN to an initiator, as attach makes them.
struct Chain {
    Chain(ArrayClient& client, const std::string& initiatorName, const std::string& suffix)
        : initiator(initiatorName), lun(client.makeLun("lun" + suffix))
    {
        host = client.make("/host", {{"TYPE", 21}, {"NAME", "host" + suffix}, {"OPERATIONSYSTEM", 0}, {"IP", "127.0.0.1"}});
        client.put("/iscsi_initiator/" + initiator, {{"PARENTTYPE", 21}, {"PARENTID", host}});
        lunGroup =
            client.make("/lungroup/", {{"TYPE", 256}, {"NAME", "lungroup" + suffix}, {"APPTYPE", 0}, {"GROUPTYPE", 0}});
        client.associate("/lungroup/associate", lunGroup, 11, lun);
        hostGroup = client.make("/hostgroup", {{"TYPE", 14}, {"NAME", "hostgroup" + suffix}});
        client.associate("/hostgroup/associate", hostGroup, 21, host);
        view = client.make("/mappingview", {{"TYPE", 245}, {"NAME", "view" + suffix}, {"ENABLEINBANDCOMMAND", false}});
        client.putAssociation("/mappingview/create_associate", view, 14, hostGroup);
        client.putAssociation("/mappingview/create_associate", view, 256, lunGroup);
    }

    std::string initiator;
    std::string lun;
    std::string host;
    std::string lunGroup;
    std::string hostGroup;
    std::string view;
};

}  // namespace brevan::sim::test

#endif
