"""A Slurm of two nodes on this machine, below one folder and on 127.0.0.1 alone, for as long as a test needs it."""
import getpass
import os
import pathlib
import pwd
import signal
import socket
import subprocess
import sys
import time

NODES = ["n1", "n2"]
SOON = 20  # seconds: machines may be slow, but nothing may hang

# Short times, so that a crash is noticed within seconds. `cred_expire` is also what a job waits that is queued again.
CONFIG = """\
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={folder}/munge/socket,cred_expire=5
CommunicationParameters=NoCtldInAddrAny,NoInAddrAny
SlurmctldPidFile={folder}/slurmctld.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdPidFile={folder}/%n.pid
SlurmdLogFile={folder}/%n.log
SlurmdSpoolDir={folder}/%n
SlurmdParameters=config_overrides
StateSaveLocation={folder}/state
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1,bf_interval=1
MpiDefault=none
ReturnToService=2
SlurmdTimeout=2
MessageTimeout=2
TCPTimeout=2
KillWait=2
NodeName=n1 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[1]} CPUs=1
NodeName=n2 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[2]} CPUs=1
PartitionName=main Nodes=n1,n2 Default=YES MaxTime=INFINITE State=UP
"""


def free_ports(count):
    probes = [socket.socket() for _ in range(count)]
    for probe in probes:
        probe.bind(("127.0.0.1", 0))
    ports = [probe.getsockname()[1] for probe in probes]
    for probe in probes:
        probe.close()
    return ports


def wait_until(what, is_so, seconds=SOON):
    end = time.monotonic() + seconds
    while not is_so():
        if time.monotonic() > end:
            raise TimeoutError(f"not within {seconds} s: {what}")
        time.sleep(0.05)


def processes_with(*variables):
    """The ids of the processes whose environment, as they were started, has all of these."""
    wanted, found = {variable.encode() for variable in variables}, []
    for entry in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if int(entry.name) != os.getpid() and wanted <= set((entry / "environ").read_bytes().split(b"\0")):
                found.append(int(entry.name))
        except OSError:
            pass
    return found


def send_signal(processes, number):
    for process in processes:
        try:
            os.kill(process, number)
        except ProcessLookupError:
            pass


class Cluster:
    """Starts with `start`; `stop` ends all of it, whatever state it is in, and what jobs have left."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.environment = {**os.environ, "SLURM_CONF": str(self.folder / "slurm.conf")}
        self.daemons = {}

    def start(self):
        host, user = socket.gethostname().split(".")[0], getpass.getuser()
        (self.folder / "slurm.conf").write_text(
            CONFIG.format(host=host, user=user, folder=self.folder, ports=free_ports(3)), encoding="ascii")
        (self.folder / "state").mkdir()
        self.start_munge()
        self.start_daemon("slurmctld", ["/usr/sbin/slurmctld", "-D"])
        for node in NODES:
            # The name is also how `crash` finds the processes that a node's daemon starts for the steps of jobs.
            self.start_daemon(node, ["/usr/sbin/slurmd", "-D", "-N", node], SLURMD_NODENAME=node)
        wait_until("both nodes are idle", lambda: self.ask("sinfo", "-h", "-o", "%T %D") == "idle 2")

    def start_munge(self):
        """As the user of that name where we may, since its daemon wants a key and folders that are its own, and a
        socket that everyone can reach."""
        self.folder.chmod(0o755)
        folder = self.folder / "munge"
        folder.mkdir()
        (folder / "key").write_bytes(os.urandom(1024))
        (folder / "key").chmod(0o400)
        become = []
        if os.getuid() == 0:
            owner = pwd.getpwnam("munge")
            become = ["--reuid", "munge", "--regid", str(owner.pw_gid), "--clear-groups"]
            for path in [folder, folder / "key"]:
                os.chown(path, owner.pw_uid, owner.pw_gid)
        self.start_daemon("munged", ["/usr/sbin/munged", "--foreground", "--key-file", folder / "key",
                                     "--socket", folder / "socket", "--pid-file", folder / "pid",
                                     "--seed-file", folder / "seed"], *become)
        wait_until("munged listens", (folder / "socket").exists)

    def start_daemon(self, name, command, *become, **more):
        """A daemon that ends with this process, even when that is killed."""
        with open(self.folder / f"{name}.out", "ab") as output:
            self.daemons[name] = subprocess.Popen(
                ["/usr/bin/setpriv", "--pdeathsig", "TERM", *become, *command], stdin=subprocess.DEVNULL,
                stdout=output, stderr=output, cwd=self.folder, env={**self.environment, **more})

    def crash(self, node):
        """Ends all that runs on a node at once, as a loss of power would."""
        daemon = self.daemons.pop(node)
        daemon.kill()
        daemon.wait()

        def left():
            return self.processes(f"SLURMD_NODENAME={node}")

        for number in (signal.SIGSTOP, signal.SIGKILL):  # none may tell of another's end
            send_signal(left(), number)
        wait_until(f"{node} is dead", lambda: not left())

    def processes(self, *variables):
        return processes_with(f"SLURM_CONF={self.environment['SLURM_CONF']}", *variables)

    def run(self, *command, seconds=60, **options):
        """What a command of Slurm, or one that uses it, ended with and said."""
        return subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False, timeout=seconds, **options)

    def ask(self, *command):
        return self.run(*command).stdout.strip()

    def stop(self):
        user = getpass.getuser()
        for more in [["--signal=KILL", "--full"], []]:
            subprocess.run(["timeout", str(SOON), "scancel", "--user", user, *more], env=self.environment,
                           stderr=subprocess.DEVNULL, check=False)
        for name in [*NODES, "slurmctld", "munged"]:
            if daemon := self.daemons.pop(name, None):
                daemon.terminate()
                try:
                    daemon.wait(SOON)
                except subprocess.TimeoutExpired:
                    daemon.kill()
                    daemon.wait()
        send_signal(self.processes(), signal.SIGKILL)
        wait_until("nothing is left", lambda: not self.processes())

    def show_logs(self):
        for path in [self.folder / "munged.out", *sorted(self.folder.glob("*.log"))]:
            if path.exists():
                lines = path.read_text(encoding="utf-8", errors="replace").splitlines()[-60:]
                print(f"--- {path}", *lines, sep="\n", file=sys.stderr)
