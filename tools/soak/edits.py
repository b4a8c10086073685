"""Random valid edits of all eleven subtrees, each as an XML document.

The generator keeps the configuration that the edits so far have made, so that
each edit is valid: it creates what is not there, deletes what is.
"""
import random
from xml.sax.saxutils import escape

NAMESPACES = ('xmlns="urn:orvek:yang:orvek-aaa" '
              'xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0"')
MOST_ENTRIES = 3  # of each list, so that the configuration does not grow with the run

GROUPS = ["core", "edge", "campus", "backup"]
DOMAINS = ["example", "guests", "lab", "campus"]


def server(prefix, ports, addresses):
    keys = {"GroupName": GROUPS, "ServerAddr": addresses, **{port: [1812, 1813, 49, 65535] for port in ports}}
    leaves = {"ServerKeyType": ["0"], "ServerKey": ["73656372657431", "616263", "00ff10"],
              "ServerPriority": range(256)}
    return (f"{prefix}Server/{prefix}ServerInfo", {prefix + name: words for name, words in keys.items()},
            {prefix + name: words for name, words in leaves.items()})


RADIUS_PORTS = ["ServerAuthenPort", "ServerAccountPort"]
IPV4 = ["192.0.2.1", "192.0.2.77", "198.51.100.9"]
IPV6 = ["2001:db8::1", "2001:db8:0:5::77", "fd00::9"]
GROUP_KEYS = {"serverGroupType": ["radius", "tacacs"], "serverGroupName": GROUPS}
VRFS = ["mgmt", "red", "blue"]

# Path of the list, words for its keys, words for its other leaves.
LISTS = [
    ("aaaSrcInterface/srcInterface", {"srcInterfaceName": ["vlan10", "loopback0", "eth1/1"]}, {"vrfName": VRFS}),
    ("aaaGroup/serverGroup", GROUP_KEYS, {}),
    ("aaaGroupVrf/serverGroup", GROUP_KEYS, {"vrfName": VRFS}),
    ("aaaDomain/domainInfo", {"domainName": DOMAINS}, {}),
    server("radiusIpv4", RADIUS_PORTS, IPV4),
    server("radiusIpv6", RADIUS_PORTS, IPV6),
    server("tacacsIpv4", ["ServerPort"], IPV4),
    server("tacacsIpv6", ["ServerPort"], IPV6),
]
GLOBAL = {"startFailType": range(256), "accountInterval": range(1 << 32)}


def element(name, content, operation=None):
    attribute = f' nc:operation="{operation}"' if operation else ""
    return f"<{name}{attribute}>{content}</{name}>"


def leaves(values):
    return "".join(element(name, escape(str(value))) for name, value in values.items())


class Edits:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.global_leaves = set()
        self.entries = {path: set() for path, _, _ in LISTS}
        self.methods = {"authen": set(), "account": set()}

    def next(self):
        """One edit: one to four deeds, of different subtrees."""
        deeds = [self.edit_global, lambda: self.edit_methods("authen"), lambda: self.edit_methods("account")]
        deeds += [lambda row=row: self.edit_list(*row) for row in LISTS]
        chosen = self.random.sample(deeds, self.random.randint(1, 4))
        return element(f"sysAaa {NAMESPACES}", "".join(deed() for deed in chosen)).replace(
            f"</sysAaa {NAMESPACES}>", "</sysAaa>")

    def choose(self, words):
        return {name: self.random.choice(choices) for name, choices in words.items()}

    def edit_global(self):
        name, value = self.random.choice(list(self.choose(GLOBAL).items()))
        if name in self.global_leaves and self.random.random() < 0.4:
            self.global_leaves.remove(name)
            return element("aaaGlobal", element(name, "", "delete"))
        self.global_leaves.add(name)
        return element("aaaGlobal", element(name, value))

    def edit_list(self, path, key_words, leaf_words):
        container, name = path.split("/")
        return element(container, self.edit_entry(
            name, self.entries[path], self.choose(key_words), leaves(self.choose(leaf_words))))

    def edit_methods(self, kind):
        domain, protocol, servers = {
            "authen": ("authDomainName", "authenProtocol", "authenServerGroup"),
            "account": ("accountDomainName", "accountProtocol", "accountServerGroup")}[kind]
        keys = {domain: self.random.choice(DOMAINS), protocol: self.random.choice(["dot1x", "default"])}
        stage = self.random.choice(["none", "start-stop", "stop-only", "wait-start"])
        rest = leaves({"accountStage": stage}) if kind == "account" else ""
        if kind == "authen" or stage != "none":
            rest += element(servers, self.method_groups())
        # Never in place: the plug-in refuses a group that moves within an entry.
        return element(f"aaaDomain{kind.capitalize()}Info", self.edit_entry(
            f"{kind}Info", self.methods[kind], keys, rest, in_place=False))

    def method_groups(self):
        content = ""
        for number, group in enumerate(self.random.sample(GROUPS, self.random.randint(1, 4))):
            suffix = str(number) if number else ""
            pair = leaves({f"groupType{suffix}": self.random.choice(["radius-group", "tacacs-group"]),
                           f"groupName{suffix}": group})
            content += element(f"GroupNum{suffix}", pair) if number else pair
        return content

    def edit_entry(self, name, entries, keys, rest, in_place=True):
        """Creates, changes or deletes an entry."""
        key = tuple(keys.values())
        is_full = len(entries) >= MOST_ENTRIES
        if key not in entries and is_full:
            key = self.random.choice(sorted(entries))
            keys = dict(zip(keys, key))
        if key not in entries:
            entries.add(key)
            return element(name, leaves(keys) + rest, self.random.choice(["create", "merge", "replace"]))
        if is_full or not in_place or self.random.random() < 0.4:
            entries.remove(key)
            return element(name, leaves(keys), self.random.choice(["delete", "remove"]))
        return element(name, leaves(keys) + rest, self.random.choice(["merge", "replace"]))
