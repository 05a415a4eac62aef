#pragma once
// The process-wide pool of controller connections: at most ten clients, one per controller (the
// server string with the FTP and HTTP ports it is reached on), each shared by the users (pool keys)
// that asked for it. Single-threaded, like everything that touches it; the pool outlives the
// objects that use it and is emptied when the application ends.

#include "frame/Export.h"
#include "transfer/ControllerClient.h"

#include <QString>
#include <QStringList>

#include <array>
#include <memory>

namespace nxr {

class NXR_EXPORT ConnectionPool
{
public:
    static constexpr int kSlots = 10;

    static ConnectionPool& instance();

    // The name of the slot of a controller: the server string alone on the standard ports, else
    // with its ports ("host#ftp/http"), so that two controllers on one address (two simulators,
    // a port-forwarding gateway) never share a connection.
    static QString slotName(const QString& server, quint16 ftpPort = 21, quint16 httpPort = 80);

    // The client kept for `server` on these ports, with `poolKey` added to its users; a new client
    // in the first free slot when none is kept; null when `server` is empty or all ten slots are
    // taken.
    std::shared_ptr<ControllerClient> getClient(const QString& poolKey, const QString& server,
                                                quint16 ftpPort = 21, quint16 httpPort = 80);

    // The calls below name a slot by `slotName`, which is the server string on the standard ports.
    // Removes `poolKey` from the users of the client kept for `server`. The last user going
    // closes the client and frees the slot. With `force` and other users left, the client is
    // closed and a fresh, unconnected one takes its place under the same server, so that the
    // others reconnect on their next call.
    void freeClient(const QString& poolKey, const QString& server, bool force);

    // For inspection: slots in use, and the users and client of the slot kept for `server`.
    int usedSlots() const;
    QStringList usersOf(const QString& server) const;
    std::shared_ptr<ControllerClient> clientOf(const QString& server) const;

    // Closes every client and frees every slot (application end).
    void clear();

private:
    ConnectionPool() = default;
    int find(const QString& server) const;

    struct Slot
    {
        std::shared_ptr<ControllerClient> client;
        QStringList users;
        QString key;
    };
    std::array<Slot, kSlots> m_slots;
    bool m_initialised = false;
};

// The pool under the names the transfer routines use.
NXR_EXPORT std::shared_ptr<ControllerClient> gfobj_GetFTPObject(const QString& poolKey,
                                                                const QString& server);
NXR_EXPORT void gsub_FreeFTPObject(const QString& poolKey, const QString& server, bool force);

} // namespace nxr
