#include "transfer/ConnectionPool.h"

#include "frame/PageTrust.h"
#include "frame/Trace.h"

#include <QCoreApplication>

namespace nxr {

namespace {
const QString kModule = QStringLiteral("Globals");

void clearAtExit()
{
    ConnectionPool::instance().clear();
}
} // namespace

ConnectionPool& ConnectionPool::instance()
{
    static ConnectionPool pool;
    return pool;
}

int ConnectionPool::find(const QString& server) const
{
    for (int i = 0; i < kSlots; ++i) {
        if (m_slots[i].client && m_slots[i].key == server)
            return i;
    }
    return -1;
}

QString ConnectionPool::slotName(const QString& server, quint16 ftpPort, quint16 httpPort)
{
    if (ftpPort == 21 && httpPort == 80)
        return server;
    return server + QLatin1Char('#') + QString::number(ftpPort) + QLatin1Char('/') +
           QString::number(httpPort);
}

std::shared_ptr<ControllerClient> ConnectionPool::getClient(const QString& poolKey, const QString& server,
                                                            quint16 ftpPort, quint16 httpPort)
{
    const QString routine = QStringLiteral("gfobj_GetFTPObject");
    NXR_TRACE(kModule, routine,
              QStringLiteral("Entered, key=") + poolKey + QStringLiteral(", server=") + server);
    if (server.isEmpty())
        return nullptr;
    if (!PageTrust::mayReachServer(server)) {
        errorTrace(kModule, routine, QStringLiteral("not a trusted controller of this page: ") + server);
        return nullptr;
    }
    if (!m_initialised) {
        for (Slot& slot : m_slots)
            slot = Slot{};
        m_initialised = true;
        if (QCoreApplication::instance())
            qAddPostRoutine(clearAtExit);
    }
    const QString name = slotName(server, ftpPort, httpPort);
    int freeSlot = -1;
    for (int i = 0; i < kSlots; ++i) {
        Slot& slot = m_slots[i];
        if (slot.client && slot.key == name) {
            if (!slot.users.contains(poolKey))
                slot.users.append(poolKey);
            return slot.client;
        }
        if (!slot.client && freeSlot < 0)
            freeSlot = i;
    }
    if (freeSlot < 0) {
        errorTrace(kModule, routine, QStringLiteral("could not allocate new FTP object for ") + server);
        return nullptr;
    }
    Slot& slot = m_slots[freeSlot];
    slot.client = ControllerClient::create();
    slot.key = name;
    slot.users = QStringList{poolKey};
    return slot.client;
}

void ConnectionPool::freeClient(const QString& poolKey, const QString& server, bool force)
{
    NXR_TRACE(kModule, QStringLiteral("gsub_FreeFTPObject"),
              QStringLiteral("Entered, key=") + poolKey + QStringLiteral(", server=") + server);
    if (server.isEmpty())
        return;
    const int index = find(server);
    if (index < 0)
        return;
    Slot& slot = m_slots[index];
    if (!slot.users.contains(poolKey))
        return;
    slot.users.removeAll(poolKey);
    if (!slot.users.isEmpty() && force) {
        std::shared_ptr<ControllerClient> old = std::move(slot.client);
        slot.client = ControllerClient::create();
        old->setRetired(true);
        old->closeWhenIdle();
    } else if (slot.users.isEmpty()) {
        std::shared_ptr<ControllerClient> old = std::move(slot.client);
        slot = Slot{};
        old->setRetired(true);
        old->closeWhenIdle();
    }
}

int ConnectionPool::usedSlots() const
{
    int used = 0;
    for (const Slot& slot : m_slots)
        used += slot.client ? 1 : 0;
    return used;
}

QStringList ConnectionPool::usersOf(const QString& server) const
{
    const int index = find(server);
    return index < 0 ? QStringList() : m_slots[index].users;
}

std::shared_ptr<ControllerClient> ConnectionPool::clientOf(const QString& server) const
{
    const int index = find(server);
    return index < 0 ? nullptr : m_slots[index].client;
}

void ConnectionPool::clear()
{
    for (Slot& slot : m_slots) {
        std::shared_ptr<ControllerClient> old = std::move(slot.client);
        slot = Slot{};
        if (old) {
            old->setRetired(true);
            old->CloseConnections();
        }
    }
}

std::shared_ptr<ControllerClient> gfobj_GetFTPObject(const QString& poolKey, const QString& server)
{
    return ConnectionPool::instance().getClient(poolKey, server);
}

void gsub_FreeFTPObject(const QString& poolKey, const QString& server, bool force)
{
    ConnectionPool::instance().freeClient(poolKey, server, force);
}

} // namespace nxr
