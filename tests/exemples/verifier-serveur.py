#!/usr/bin/env python3
"""The service over HTTP: its document and its answers, who is let in, what no client can do to the others, and what a new
reference or a stop does to requests on their way.

Usage: verifier-serveur.py COMMAND COMPILED_REFERENCE SOURCES
"""
import contextlib
import http.client
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse

import jsonschema

sys.dont_write_bytecode = True
from aides.commande import Compte  # noqa: E402

PROGRAMME, REFERENCE, SOURCES = sys.argv[1:4]
FACTURES = [json.loads(p.read_text()) for p in sorted((pathlib.Path(SOURCES) / "examples").glob("*.json"))]
NDJSON = {"Content-Type": "application/x-ndjson"}
JETON = "un-jeton-pour-essayer"


class Service:
    """A service on a free port, in a temporary directory of its own that it must leave empty."""

    def __init__(self, *options, reference=REFERENCE):
        self.temporaire = tempfile.mkdtemp()
        self.processus = subprocess.Popen([PROGRAMME, "serveur", "-r", reference, "--port", "0", *options], stderr=subprocess.PIPE,
                                          env={**os.environ, "TMPDIR": self.temporaire}, text=True)
        self.journal = [self.processus.stderr.readline()]
        self.port = int(re.search(r":(\d+)/", self.journal[0]).group(1))
        self.lecteur = threading.Thread(target=lambda: self.journal.extend(self.processus.stderr))
        self.lecteur.start()

    def demander(self, methode, chemin, corps=None, entetes=None, connexion=None):
        """(status, fields, body)"""
        liaison = connexion or http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        liaison.request(methode, chemin, corps, entetes or {})
        reponse = liaison.getresponse()
        contenu = reponse.read().decode()
        if connexion is None:
            liaison.close()
        return reponse.status, reponse.headers, contenu

    def brut(self, octets, attendre=20):
        """What raw bytes are answered, until the service cuts."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=attendre) as prise:
            with contextlib.suppress(BrokenPipeError, ConnectionResetError):
                for morceau in [octets] if isinstance(octets, bytes) else octets:
                    prise.sendall(morceau)
            recu = b""
            with contextlib.suppress(ConnectionResetError):
                while morceau := prise.recv(65536):
                    recu += morceau
            return recu.decode()

    def ouvriers(self):
        return subprocess.run(["ps", "-o", "pid=", "--ppid", str(self.processus.pid)], capture_output=True, text=True).stdout.split()

    def attendre_journal(self, texte, nombre=1):
        fin = time.monotonic() + 60
        while sum(texte in ligne for ligne in self.journal) < nombre and time.monotonic() < fin:
            time.sleep(0.02)
        return sum(texte in ligne for ligne in self.journal) >= nombre

    def finir(self):
        """The exit status, everything it said, and what it left behind."""
        if self.processus.poll() is None:
            self.processus.send_signal(signal.SIGTERM)
        statut = self.processus.wait(60)
        self.lecteur.join()
        restes = os.listdir(self.temporaire)
        shutil.rmtree(self.temporaire)
        return statut, "".join(self.journal), restes


@contextlib.contextmanager
def service(*options, **autres):
    ouvert = Service(*options, **autres)
    try:
        yield ouvert
    finally:
        ouvert.finir()


def verifier_document(s, compte):
    """Every road of the document answers what its schema tells; the files of the page are all there is besides."""
    document = json.loads(s.demander("GET", "/openapi.json")[2])

    def conforme(reponse, valeur):
        """Against the schema of a response, its references found in the document."""
        while "$ref" in reponse:
            reponse = document["components"]["responses"][reponse["$ref"].rsplit("/", 1)[1]]
        schema = next(iter(reponse["content"].values()))["schema"]
        jsonschema.Draft202012Validator({**schema, "components": document["components"]}).validate(valeur)

    for chemin, methodes in document["paths"].items():
        for methode, route in methodes.items():
            question, reel = {}, chemin
            for parametre in route.get("parameters", []):
                if "$ref" in parametre:
                    parametre = document["components"]["parameters"][parametre["$ref"].rsplit("/", 1)[1]]
                exemple = parametre.get("example")
                if parametre["in"] == "path":
                    reel = reel.replace("{%s}" % parametre["name"], exemple)
                elif exemple is not None:
                    question.update(exemple if isinstance(exemple, dict) else {parametre["name"]: exemple})
            corps = json.dumps(FACTURES[0]) if methode == "post" else None
            statut, champs, contenu = s.demander(methode.upper(), f"{reel}?{urllib.parse.urlencode(question)}", corps)
            compte.vrai(statut == 200, f"{methode} {chemin}: {statut} {contenu}")
            conforme(route["responses"]["200"], json.loads(contenu))
            compte.vrai("default-src 'none'" in champs["Content-Security-Policy"] and champs["X-Content-Type-Options"] == "nosniff"
                            and champs["Cache-Control"] == "no-store", f"{chemin}: {champs}")
    refus = document["components"]["responses"]["Refus"]
    facture = {**FACTURES[0], "natureAssurance": "XX"}
    # A request, its status, its code, a text of its message or cause.
    for methode, chemin, corps, entetes, statut, code, texte in [
            ("GET", "/actes", None, {}, 400, "DEMANDE", "des mots"),
            ("GET", "/actes?q=x&dat=2026-01-01", None, {}, 400, "DEMANDE", "« date »"),
            ("GET", "/actes?q=x&q=y", None, {}, 400, "DEMANDE", "plusieurs fois"),
            ("GET", "/actes?q=x&date=2026-02-31", None, {}, 400, "DEMANDE", "2026-02-31"),
            ("GET", "/actes?q=" + "mot+" * 100, None, {}, 400, "DEMANDE", "trop de mots"),
            ("GET", "/actes?q=x&limite=1.5", None, {}, 400, "DEMANDE", "1.5"),
            ("GET", "/actes/HHFA00", None, {}, 404, "0xD002", "« HHFA001 »"),
            ("GET", "/consulter/CCAM_73", None, {}, 404, "0xD000", "« CCAM_37 »"),
            ("GET", "/consulter/CCAM_37?act=HHFA001", None, {}, 400, "DEMANDE", "« acte »"),
            ("GET", "/consulter/CCAM_37?acte=HHFA999&activite=1&phase=0", None, {}, 404, "0xD002", "absent"),
            ("GET", "/comparer?avant=../exemple", None, {}, 404, "INTROUVABLE", "../exemple"),
            ("GET", "/page.css/../../../etc/passwd", None, {}, 404, "INTROUVABLE", "passwd"),
            ("GET", "/..%2f..%2fetc%2fpasswd", None, {}, 404, "INTROUVABLE", "passwd"),
            ("POST", "/controler", "[", {}, 400, "DEMANDE", "octet"),
            ("POST", "/controler", "[" * 10000 + "]" * 10000, {}, 400, "DEMANDE", "imbriqué"),
            ("POST", "/controler", json.dumps(facture), {}, 400, "DEMANDE", "$.natureAssurance"),
            ("POST", "/controler?expliquer=oui", "{}", {}, 400, "DEMANDE", "oui"),
            ("POST", "/controler", "x" * (1 << 20) + "x", {}, 413, "TAILLE", "1048577"),
            ("POST", "/actes", "", {}, 404, "INTROUVABLE", "POST"),
            ("PUT", "/actes", "", {}, 405, "METHODE", "PUT"),
            ("GET", "/sante", None, {"Host": "exemple.fr"}, 403, "ORIGINE", "exemple.fr"),
            ("GET", "/versions", None, {"Origin": "http://exemple.fr"}, 403, "ORIGINE", "http://exemple.fr"),
            ("GET", "/versions", None, {"Origin": "null"}, 403, "ORIGINE", "null")]:
        vu, _, contenu = s.demander(methode, chemin, corps, entetes)
        lu = json.loads(contenu)
        conforme(refus, lu)
        compte.vrai((vu, lu["code"]) == (statut, code) and texte in f"{lu['message']} {lu['cause']}", f"{methode} {chemin[:60]}: {vu} {lu}")
    admis = s.demander("GET", "/versions", None, {"Host": f"localhost:{s.port}", "Origin": f"http://127.0.0.1:{s.port}"})
    compte.vrai(admis[0] == 200, f"its own host and origin: {admis}")
    for chemin in ("/", "/page.js", "/page.css", "/icone.svg"):
        ailleurs = set(re.findall(r"https?://[^\s'\"<>)]+", s.demander("GET", chemin)[2])) - {"http://www.w3.org/2000/svg"}
        compte.vrai(not ailleurs, f"{chemin} names {ailleurs}")


def verifier_memes_reponses(s, compte):
    """A batch is answered as the command answers it, and an invoice alone as in the batch."""
    lot = "".join(json.dumps(facture) + "\n" for facture in FACTURES)
    dites = subprocess.run([PROGRAMME, "controler", "--lot", "--detail", "-r", REFERENCE], input=lot, capture_output=True, text=True).stdout
    attendues = [json.loads(ligne) for ligne in dites.splitlines()]
    statut, _, contenu = s.demander("POST", "/controler?detail=1", lot + "pas du JSON\n", NDJSON)
    recues = [json.loads(ligne) for ligne in contenu.splitlines()]
    compte.vrai(statut == 200 and len(recues) == len(FACTURES) + 1 and recues[-1]["code"] == "DEMANDE", f"batch: {statut}")
    for facture, attendue, recue in zip(FACTURES, attendues, recues):
        egales = recue == attendue if "verdict" in attendue else recue["message"] == attendue["erreur"]
        compte.vrai(egales, f"{attendue}\n  over HTTP: {recue}")
        seule = s.demander("POST", "/controler", json.dumps(facture))
        compte.vrai((seule[0] == 200) == ("verdict" in attendue) and json.loads(seule[2]) == recue, f"alone: {seule}")


def verifier_hostiles(compte):
    """Whatever some clients do, another one is answered at once."""
    with service("--delai", "2", "--corps-max", "1") as s:
        hote = f"Host: 127.0.0.1:{s.port}\r\n".encode()
        debut = b"POST /controler HTTP/1.1\r\n" + hote

        def lentement(octets):
            for octet in octets:
                time.sleep(0.2)
                yield bytes([octet])

        for nom, octets, statut in [
                ("headers of megabytes", b"GET / HTTP/1.1\r\n" + hote + b"X-Y: " + b"z" * (4 << 20), "431"),
                ("a million fields", b"GET / HTTP/1.1\r\n" + b"A: b\r\n" * (1 << 20), "431"),
                ("an address of megabytes", b"GET /" + b"a" * (1 << 20), "431"),
                ("a long address", b"GET /actes/" + b"(" * 8000 + b" HTTP/1.1\r\n" + hote + b"\r\n", "400"),
                ("a slow head", lentement(b"GET /versions HTTP/1.1\r\n" + hote + b"\r\n"), "408"),
                ("a slow body", (m for p in ([debut + b"Content-Length: 500\r\n\r\n"], lentement(b"{" * 500)) for m in p), "408"),
                ("a body without size", debut + b"Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n\r\n", "411"),
                ("two sizes", debut + b"Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", "400"),
                ("a size below zero", debut + b"Content-Length: -1\r\n\r\n", "400"),
                ("a body announced too large", debut + b"Content-Length: 99999999999999999999\r\n\r\n", "4"),
                ("two hosts", b"GET / HTTP/1.1\r\n" + hote + hote + b"\r\n", "400"),
                ("a field broken in two", b"GET / HTTP/1.1\r\n" + hote + b"A: b\r\n c\r\n\r\n", "400"),
                ("no HTTP", bytes(range(256)) * 100, "4"),
                ("HTTP/2", b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", "400")]:
            lu = s.brut(octets)
            compte.vrai(lu.startswith(f"HTTP/1.1 {statut}"), f"{nom}: {lu[:80]!r}")
        ensemble = s.brut((b"GET /sante HTTP/1.1\r\n" + hote + b"\r\n") * 500 + b"GET /versions HTTP/1.1\r\nConnection: close\r\n" + hote + b"\r\n")
        compte.vrai(ensemble.count("HTTP/1.1 200") == 501, f"501 requests at once: {ensemble.count('HTTP/1.1 200')}")
    with service("--demandes-max", "3", "--processus", "1") as s:
        ouvertes = [socket.create_connection(("127.0.0.1", s.port)) for _ in range(1000)]
        for i, prise in enumerate(ouvertes):
            prise.sendall(b"GET /actes?q=a HTTP/1.1\r\nHost:"[: i % 30])
        avant = time.monotonic()
        compte.vrai(s.demander("GET", "/versions")[0] == 200, "beside 1,000 open connections")
        compte.vrai(time.monotonic() - avant < 5, "beside 1,000 open connections: slow")
        lot = "".join(json.dumps(facture) + "\n" for facture in FACTURES) * (3 if "NOXLUX_ECHANTILLON" in os.environ else 40)
        statuts = []
        taches = [threading.Thread(target=lambda: statuts.append(s.demander("POST", "/controler?detail=1", lot, NDJSON)[0])) for _ in range(8)]
        for tache in taches:
            tache.start()
        for tache in taches:
            tache.join()
        compte.vrai(set(statuts) == {200, 429} and statuts.count(200) >= 3, f"8 long requests where 3 are let in: {statuts}")
        os.kill(int(s.ouvriers()[0]), signal.SIGKILL)
        compte.vrai(s.attendre_journal("relue") and s.demander("GET", "/versions")[0] == 200, f"a process that broke: {s.journal}")
        for prise in ouvertes:
            prise.close()


def verifier_jeton(compte):
    fini = subprocess.run([PROGRAMME, "serveur", "-r", REFERENCE, "--adresse", "0.0.0.0"], capture_output=True, text=True, timeout=60)
    compte.vrai(fini.returncode == 2 and "--jeton-fichier" in fini.stderr, f"open to others without a token: {fini}")
    with tempfile.NamedTemporaryFile("w") as fichier:
        fichier.write(JETON + "\n")
        fichier.flush()
        with service("--adresse", "0.0.0.0", "--jeton-fichier", fichier.name, "--nom", "bureau.local") as s:
            for chemin, entetes, statut in [("/versions", {}, 401), ("/versions", {"Authorization": "Bearer " + JETON[:-1]}, 401),
                                            ("/versions", {"Authorization": "Bearer " + JETON}, 200), ("/", {}, 200), ("/sante", {}, 200),
                                            ("/page.js/../versions", {}, 401), ("/versions?/sante", {}, 401),
                                            ("/sante", {"Host": "bureau.local", "Origin": "https://bureau.local"}, 200)]:
                vu = s.demander("GET", chemin, None, entetes)
                compte.vrai(vu[0] == statut, f"{chemin} with {entetes}: {vu}")


def verifier_nouvelle_reference(compte):
    """Clients that ask without pause see the new reference come, and none of their requests fail."""
    with tempfile.TemporaryDirectory() as dossier:
        fichier = pathlib.Path(dossier, "tablebin.nox")
        shutil.copy(pathlib.Path(REFERENCE, "tablebin.nox"), fichier)
        with service(reference=dossier) as s:
            vues, faux, arret = [], [], threading.Event()

            def client():
                liaison = http.client.HTTPConnection("127.0.0.1", s.port, timeout=60)
                while not arret.is_set():
                    try:
                        statut, _, contenu = s.demander("GET", "/versions", None, {}, liaison)
                        vues.append(json.loads(contenu)["reference"]["variante"]) if statut == 200 else faux.append(contenu)
                    except Exception as erreur:  # noqa: BLE001
                        faux.append(repr(erreur))

            clients = [threading.Thread(target=client) for _ in range(4)]
            for tache in clients:
                tache.start()
            nouvelle = pathlib.Path(dossier, "nouvelle")
            sources = shutil.copytree(pathlib.Path(SOURCES, "reference/exemple"), pathlib.Path(dossier, "sources"))
            for source in sources.glob("*.toml"):
                source.write_text(source.read_text().replace("EXEMPLE001", "AUTRE"))
            subprocess.run([PROGRAMME, "compiler", sources, "--socle", pathlib.Path(SOURCES, "reference/socle"), "-o", nouvelle],
                           check=True, capture_output=True)
            os.replace(nouvelle / "tablebin.nox", fichier)
            s.processus.send_signal(signal.SIGHUP)
            compte.vrai(s.attendre_journal("relue"), f"SIGHUP: {s.journal}")
            apres = s.demander("GET", "/versions")[2]
            compte.vrai("AUTRE" in apres, f"after SIGHUP: {apres}")
            pathlib.Path(dossier, "abimee").write_bytes(fichier.read_bytes()[:-100])
            os.replace(pathlib.Path(dossier, "abimee"), fichier)
            s.processus.send_signal(signal.SIGHUP)
            compte.vrai(s.attendre_journal("l'ancienne reste"), f"SIGHUP with a damaged file: {s.journal}")
            etat = json.loads(s.demander("GET", "/sante")[2])
            compte.vrai(etat["etat"] == "pret" and etat["referenceRefusee"], f"with a damaged file: {etat}")
            arret.set()
            for tache in clients:
                tache.join()
            compte.vrai(not faux, f"{len(faux)} requests failed: {faux[:3]}")
            compte.vrai(vues[0] != "AUTRE" and vues[-1] == "AUTRE", f"seen: {vues[0]}, {vues[-1]}")


def verifier_arret(compte):
    """What was begun is finished; of the invoices nothing is left, neither in a file nor in what was said."""
    s = Service()
    marque = "MARQUEDUPATIENT"
    lot = "".join(json.dumps({**facture, "reference": marque}) + "\n" for facture in FACTURES) * 20
    liaison = http.client.HTTPConnection("127.0.0.1", s.port, timeout=60)
    liaison.request("POST", "/controler?detail=1", lot + marque, NDJSON)
    oisive = socket.create_connection(("127.0.0.1", s.port))
    while json.loads(s.demander("GET", "/sante")[2])["demandesEnCours"] == 0:
        time.sleep(0.01)
    ecrits = b"".join(f.read_bytes() for f in pathlib.Path(s.temporaire).rglob("*") if f.is_file() and "reference" not in f.parts)
    s.processus.send_signal(signal.SIGTERM)
    reponse = liaison.getresponse()
    contenu = reponse.read().decode()
    compte.vrai(reponse.status == 200 and contenu.count(marque) == 20 * len(FACTURES), f"cut by SIGTERM: {reponse.status}, {len(contenu)}")
    statut, journal, restes = s.finir()
    compte.vrai(statut == 0 and not restes, f"SIGTERM: status {statut}, left behind: {restes}")
    compte.vrai(marque not in journal and marque.encode() not in ecrits, f"an invoice was written: {journal}")
    oisive.close()


resource.setrlimit(resource.RLIMIT_NOFILE, (min(4096, resource.getrlimit(resource.RLIMIT_NOFILE)[1]),) * 2)
compte = Compte()
with service("--corps-max", "1") as ouvert:
    verifier_document(ouvert, compte)
    verifier_memes_reponses(ouvert, compte)
verifier_hostiles(compte)
verifier_jeton(compte)
verifier_nouvelle_reference(compte)
verifier_arret(compte)
compte.finir()
