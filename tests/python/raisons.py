"""Answers of the command beside those of the package."""
import json


def sans_raisons(texte):
    """The answer of the command without why: the package asks the library alone."""
    reponse = json.loads(texte)
    for erreur in reponse.get("erreurs", []):
        for cle in ("regle", "detail", "donnees"):
            del erreur[cle]
    if cause := reponse.pop("cause", None):
        reponse["erreur"] = reponse["erreur"].removesuffix(" : " + cause["phrase"])
    return json.dumps(reponse, ensure_ascii=False, separators=(",", ":"))
