#pragma once
// The fax device finder: probes serial ports with AT+FCLASS=? and keeps those that answer as fax modems, with the
// fax classes each supports. The search blocks, bounded per port.

#include <QList>
#include <QString>
#include <QStringList>

namespace osprel {

// Which serial ports the search may write to. A port in a chamber lab is as likely to be a chamber controller as a
// modem: by default only the listed ports are probed, never one listed as not a modem.
struct SearchPolicy
{
    QStringList ports;           // probed, in this order
    QStringList notModems;       // never opened
    bool allSerialPorts = false; // also every /dev/ttyS*, ttyUSB* and ttyACM* that is not listed as not a modem
};

struct FaxDeviceInfo
{
    QString port; // device path
    bool class1 = false, class2 = false, class20 = false;
};

class FaxFinder
{
public:
    static constexpr int kProbeMs = 2000; // per port: a modem answers in well under a second

    void setPolicy(const SearchPolicy &policy) { m_policy = policy; }
    const SearchPolicy &policy() const { return m_policy; }
    // Device paths probed after the listed ports, e.g. a symlink to a pseudo-terminal; the not-a-modem list holds.
    void setExtraPaths(const QStringList &paths) { m_extraPaths = paths; }
    QStringList extraPaths() const { return m_extraPaths; }
    // Whether the system's serial ports may be probed at all when the policy asks for all of them (default true).
    void setSearchSystemPorts(bool on) { m_systemPorts = on; }
    // How long one port may take to answer (default kProbeMs).
    void setProbeTimeout(int ms) { m_probeMs = ms; }
    int probeTimeout() const { return m_probeMs; }

    // Probes every candidate that opens; returns the number of fax devices found.
    int search();
    int count() const { return int(m_devices.size()); }
    FaxDeviceInfo item(int i) const { return m_devices.value(i); }

    // The serial ports the search probes, in order.
    QStringList candidates() const;
    // Whether the policy forbids opening port (by its name or the device it leads to).
    bool isNotModem(const QString &port) const;
    // Reads an AT+FCLASS=? answer such as "0,1,1.0,2,2.0", "(0-2,2.0)" or "+FCLASS: 0,1": true when it names a fax
    // class, with the classes set in info.
    static bool parseClasses(const QByteArray &answer, FaxDeviceInfo *info);
    // Probes one port; true when a fax modem answered.
    static bool probe(const QString &port, FaxDeviceInfo *info, int timeoutMs = kProbeMs);

private:
    SearchPolicy m_policy;
    QStringList m_extraPaths;
    bool m_systemPorts = true;
    int m_probeMs = kProbeMs;
    QList<FaxDeviceInfo> m_devices;
};

} // namespace osprel
