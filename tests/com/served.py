"""A database that the command of this machine serves, for programs of Windows that reach it over ODBC."""
import pathlib
import subprocess

USER = "ann"
PASSWORD = "open sesame; please"


class ServedDatabase:
    """On a free port of this machine from the beginning of a `with` to its end."""

    def __init__(self, command, database):
        self._command = command
        self._database = pathlib.Path(database)
        self._users = self._database.with_suffix(".users")
        self._users.unlink(missing_ok=True)
        words = [command, "serve", "--add-user", USER, "--users", self._users]
        subprocess.run(words, input=PASSWORD + "\n", text=True, check=True)
        self._port = 0
        self._process = None

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()

    def start(self):
        """On the port that it had, when it ran before."""
        words = [self._command, "serve", "--tds", f"127.0.0.1:{self._port}", "--users", self._users]
        words += ["--dsn", f"Embedded={self._database};Synchronous=Normal"]
        self._process = subprocess.Popen(words, stdout=subprocess.PIPE, text=True)
        line = self._process.stdout.readline()
        if not line.startswith("listening on "):
            self.stop()
            raise SystemExit(f"The server said: {line!r}")
        self._port = int(line.rsplit(":", 1)[1])

    def stop(self):
        """Ends it, and waits until it is gone."""
        self._process.terminate()
        self._process.communicate(timeout=30)

    def _pairs(self, separator, driver="FreeTDS"):
        where = [f"Driver={driver}", "Server=127.0.0.1", f"Port={self._port}", "TDS_Version=7.4", "ClientCharset=UTF-8"]
        return "".join(pair + separator for pair in where)

    def connection(self, password=PASSWORD):
        """The connection string."""
        return f"{self._pairs(';')}UID={USER};PWD={{{password}}}"

    def data_source_connection(self, odbc_ini, driver="FreeTDS"):
        """The same by a data source's name, with the file of ODBC's data sources that knows it."""
        odbc_ini.write_text("[served]\n" + self._pairs("\n", driver), encoding="utf-8")
        return f"DSN=served;UID={USER};PWD={{{PASSWORD}}}"
