'use strict';
// The page of the service: acts, invoices, comparison. It asks the service that it came from, and no other; what
// is typed is kept in the page alone.

// --- Elements ---

const $ = (choix, ou = document) => ou.querySelector(choix);

// An element with its attributes and what it holds; texts are never read as HTML.
function el(nom, attributs = {}, ...contenu) {
  return garnir(document.createElement(nom), attributs, contenu);
}

function svg(nom, attributs = {}, ...contenu) {
  return garnir(document.createElementNS('http://www.w3.org/2000/svg', nom), attributs, contenu);
}

function garnir(element, attributs, contenu) {
  for (const [cle, valeur] of Object.entries(attributs)) {
    if (typeof valeur === 'function') {
      element.addEventListener(cle, valeur);
    } else if (valeur !== null && valeur !== undefined && valeur !== false) {
      element.setAttribute(cle, valeur === true ? '' : valeur);
    }
  }
  element.append(...contenu.flat().filter(morceau => morceau !== null && morceau !== undefined && morceau !== ''));
  return element;
}

// --- Values, as they are read in France ---

const enEuros = new Intl.NumberFormat('fr-FR', {style: 'currency', currency: 'EUR'});
const enNombre = new Intl.NumberFormat('fr-FR', {maximumFractionDigits: 3});
const euros = valeur => typeof valeur === 'number' ? enEuros.format(valeur) : '—';
const pourcent = taux => `${taux < 1 ? '−' : '+'} ${enNombre.format(Math.abs(taux - 1) * 100)} %`;
const jour = iso => /^\d{4}-\d\d-\d\d$/.test(iso || '') ? iso.split('-').reverse().join('/') : iso || '';
const codeEtLibelle = valeur => valeur ? [valeur.code, valeur.libelle].filter(Boolean).join(' ') : '';

// "1 234,56" as a number; what is no number stays the text that it is, and the service says so.
function nombre(texte) {
  const simple = texte.replace(/[\s€]/g, '').replace(',', '.');
  return simple !== '' && Number.isFinite(Number(simple)) ? Number(simple) : texte;
}

function aujourdhui() {
  const maintenant = new Date();
  return new Date(maintenant - maintenant.getTimezoneOffset() * 60000).toISOString().slice(0, 10);
}

function attendre(delai, faire) {
  let minuterie;
  return (...arguments_) => {
    clearTimeout(minuterie);
    minuterie = setTimeout(() => faire(...arguments_), delai);
  };
}

// --- The service ---

class Refus extends Error {
  constructor(reponse, statut) {
    super(reponse.message || 'le service ne répond pas');
    Object.assign(this, {code: reponse.code, cause: reponse.cause, statut});
  }
}

let jeton = sessionStorage.getItem('jeton') || '';

async function demander(chemin, options = {}) {
  let reponse;
  try {
    reponse = await fetch(chemin, {...options, headers: {...options.headers, ...(jeton ? {Authorization: `Bearer ${jeton}`} : {})}});
  } catch (panne) {
    throw panne.name === 'AbortError' ? panne : new Refus({message: 'le service ne répond pas'}, 0);
  }
  const valeur = await reponse.json();
  if (!reponse.ok) {
    if (reponse.status === 401) {
      demanderJeton(jeton ? valeur.message : '');
    }
    throw new Refus(valeur, reponse.status);
  }
  return valeur;
}

// Of several answers on their way, the last one asked for alone counts.
function derniere() {
  let courante;
  return (chemin, options = {}) => {
    courante?.abort();
    courante = new AbortController();
    return demander(chemin, {...options, signal: courante.signal});
  };
}

const estAbandon = erreur => erreur.name === 'AbortError';
const parametres = valeurs => new URLSearchParams(Object.entries(valeurs).filter(([, valeur]) => valeur)).toString();

function demanderJeton(faute) {
  $('#jeton').hidden = false;
  $('#jeton-faute').textContent = faute;
  $('#jeton-saisi').focus();
}

$('#jeton form').addEventListener('submit', evenement => {
  evenement.preventDefault();
  jeton = $('#jeton-saisi').value.trim();
  sessionStorage.setItem('jeton', jeton);
  $('#jeton').hidden = true;
  presenter();
  montrerEcran();
});

// --- Search ---

const chercher = derniere();

async function rechercher() {
  const q = $('#mots').value.trim();
  if (q.length < 2) {
    $('#resultats').replaceChildren();
    $('#compte').textContent = '';
    return;
  }
  const date = $('#date-recherche').value;
  try {
    const trouve = await chercher(`/actes?${parametres({q, date, chapitre: $('#chapitre').value.trim(), limite: 50})}`);
    $('#resultats').replaceChildren(...trouve.actes.map(acte => resultat(acte, date)));
    $('#compte').replaceChildren(...compteDe(trouve));
  } catch (erreur) {
    if (!estAbandon(erreur)) {
      $('#resultats').replaceChildren();
      $('#compte').textContent = erreur.message;
    }
  }
}

function resultat(acte, date) {
  return el('li', {}, el('a', {href: `#acte/${acte.code}${date ? `/${date}` : ''}`},
    el('span', {class: 'code'}, acte.code), el('span', {class: 'libelle'}, acte.libelle),
    el('span', {class: 'prix'}, euros(acte.prix)), el('span', {class: 'ou pale'}, acte.chapitre.titre)));
}

function compteDe(trouve) {
  const montres = trouve.actes.length < trouve.nombre ? `, les ${trouve.actes.length} premiers` : '';
  const texte = trouve.nombre === 0 ? 'Aucun acte.' : `${trouve.nombre} acte${trouve.nombre > 1 ? 's' : ''}${montres}.`;
  return [texte, ...trouve.suggestions.flatMap(({mot, propositions}) => [
    ` « ${mot} » ne mène à aucun acte${propositions.length ? ' ; vouliez-vous ' : '.'}`,
    ...propositions.flatMap((proposition, i) => [i ? ', ' : '', el('button', {type: 'button', click: () => corriger(mot, proposition)}, proposition)]),
    propositions.length ? ' ?' : ''])];
}

function corriger(mot, proposition) {
  const mots = $('#mots').value.split(/\s+/);
  const sansAccents = texte => texte.normalize('NFD').replace(/[\u0300-\u036f]/g, '').toLowerCase();
  const rang = mots.findIndex(saisi => sansAccents(saisi).startsWith(sansAccents(mot)));
  $('#mots').value = rang < 0 ? proposition : mots.map((saisi, i) => i === rang ? proposition : saisi).join(' ');
  $('#mots').focus();
  rechercher();
}

$('#recherche').addEventListener('submit', evenement => {
  evenement.preventDefault();
  rechercher();
});
$('#recherche').addEventListener('input', attendre(180, rechercher));
// From the words down into the list, and back.
$('#ecran-chercher').addEventListener('keydown', evenement => {
  const arrets = [$('#mots'), ...document.querySelectorAll('#resultats a')];
  const ici = arrets.indexOf(document.activeElement);
  const pas = {ArrowDown: 1, ArrowUp: -1}[evenement.key];
  if (pas && ici >= 0 && arrets[ici + pas]) {
    evenement.preventDefault();
    arrets[ici + pas].focus();
  }
});

// --- The sheet of an act ---

const lireFiche = derniere();

async function montrerActe(code, date) {
  $('#titre-acte').textContent = code;
  $('#date-acte').value = date || aujourdhui();
  $('#dater').dataset.code = code;
  try {
    const fiche = await lireFiche(`/actes/${encodeURIComponent(code)}?${parametres({date})}`);
    $('#titre-acte').textContent = `${fiche.code} — ${fiche.libelleCourt}`;
    document.title = `${fiche.code} — noxlux`;
    $('#fiche').replaceChildren(...ficheDe(fiche));
  } catch (erreur) {
    if (!estAbandon(erreur)) {
      $('#fiche').replaceChildren(el('p', {class: 'faute', role: 'alert'}, erreur.message));
    }
  }
}

$('#date-acte').addEventListener('change', () => {
  location.hash = `acte/${$('#dater').dataset.code}/${$('#date-acte').value}`;
});
$('#dater').addEventListener('submit', evenement => evenement.preventDefault());

// A list of terms; those without a text are left out.
function termes(...paires) {
  const dits = paires.filter(([, valeur]) => Array.isArray(valeur) ? valeur.length : valeur);
  return dits.length ? [el('dl', {}, ...dits.flatMap(([terme, valeur]) => [el('dt', {}, terme), el('dd', {}, valeur)]))] : [];
}

const lienActe = ({acte, libelle}) => el('li', {}, el('a', {href: `#acte/${acte}`}, acte), ` ${libelle}`);
const liste = (elements, dire) => elements.length ? [el('ul', {}, ...elements.map(dire))] : [];
const enumerer = codes => codes.map(codeEtLibelle).join(' ; ');

function ficheDe(fiche) {
  const vie = [fiche.creation && `créé le ${jour(fiche.creation)}`, fiche.fin && `fin le ${jour(fiche.fin)}`].filter(Boolean).join(', ');
  return [
    el('p', {}, fiche.libelle || ''),
    el('p', {}, el('button', {type: 'button', click: () => facturer(fiche.code)}, 'Mettre sur la facture')),
    ...termes(
      ['Chapitre', fiche.chemin.map(menu => menu.titre).join(' > ')],
      ['Notes du chapitre', fiche.chemin.map(menu => menu.notes).filter(Boolean).join('\n')],
      ['Type', codeEtLibelle(fiche.type)], ['Vie', vie], ['Notes', fiche.notes],
      ['Conditions générales', fiche.conditionsGenerales], ['Remboursement', codeEtLibelle(fiche.remboursement)],
      ['Entente préalable', {true: 'oui', false: 'non'}[fiche.ententePrealable]],
      ['Exonération', enumerer(fiche.exonerations)], ['Assurance', enumerer(fiche.naturesAssurance)],
      ['Déplacement', codeEtLibelle(fiche.fraisDeplacement)],
      ['Sexe', {1: 'masculin', 2: 'féminin'}[fiche.sexe] || fiche.sexe],
      ['Procédures', liste(fiche.procedures, lienActe)], ['Incompatible avec', liste(fiche.incompatibles, lienActe)]),
    ...fiche.activites.flatMap(activite => activiteDe(activite, fiche.date)),
    ...(fiche.modificationsLocales.length ? [el('h2', {}, 'Modifié localement'),
      ...liste(fiche.modificationsLocales, ({donnee, depuis, ...ou}) => el('li', {},
        `${donnee}, depuis le ${jour(depuis)} (${Object.entries(ou).map(([cle, valeur]) => `${cle} ${valeur}`).join(', ')})`))] : [])];
}

function activiteDe(activite, date) {
  const qui = activite.executants.map(classe => classe.specialites.length ? enumerer(classe.specialites) : `classe ${classe.classe}`).join(' ; ');
  return [el('h2', {}, `Activité ${codeEtLibelle(activite)}`),
    ...termes(
      ['Catégorie', codeEtLibelle(activite.categorie)], ['Regroupement', codeEtLibelle(activite.regroupement)],
      ['Qui peut le faire', qui || 'toutes les spécialités'], ['Agrément radiologie', activite.agrementRadio && 'exigé'],
      ['Références médicales', activite.rmo.join(' ; ')], ['Documents associés', enumerer(activite.extensions)],
      ['Associable à', liste(activite.associes, lienActe)]),
    ...activite.phases.flatMap(phase => phaseDe(phase, date)),
    ...(activite.modificateurs.length ? [tableau('Modificateurs', ['code', 'libellé', 'effet'],
      activite.modificateurs.map(modificateur => [modificateur.code, modificateur.libelle, effet(modificateur)]), 2)] : [])];
}

function effet({forfait, taux}) {
  return [forfait ? `+ ${euros(forfait)}` : '', taux && taux !== 1 ? pourcent(taux) : ''].filter(Boolean).join(' et ') || 'sans effet sur le prix';
}

// "16A0J" as "16 ans"
function age(periode) {
  const lu = /^(\d+)A(\d+)J$/.exec(periode || '');
  return lu ? [lu[1] !== '0' && `${lu[1]} ans`, lu[2] !== '0' && `${lu[2]} jours`].filter(Boolean).join(' et ') : '';
}

function phaseDe(phase, date) {
  const ages = [phase.ageMinimum && `à partir de ${age(phase.ageMinimum)}`, phase.ageMaximum && `jusqu'à ${age(phase.ageMaximum)}`];
  return [el('h3', {}, `Phase ${phase.phase} : ${euros(phase.prix)}`),
    ...(phase.historique.length > 1 ? [courbe(phase.historique, date)] : []),
    ...(phase.historique.length ? [tableau('Prix', ['depuis le', 'prix'], phase.historique.map(({depuis, prix}) => [jour(depuis), euros(prix)]), 1)] : []),
    ...termes(
      ['Supplément en cabinet', phase.supplementCharges ? euros(phase.supplementCharges) : ''],
      ['Âge', ages.filter(Boolean).join(', ')], ['Dents traitées', phase.nombreDents === null ? '' : String(phase.nombreDents)],
      ['Dents exclues', phase.dentsIncompatibles.join(' ')],
      ['Outre-mer', phase.majorations.map(({caisse, taux}) => `${caisse} : ${pourcent(taux)}`).join(' ; ')])];
}

// The price over time as a stair, from zero up.
function courbe(historique, date) {
  const instants = historique.map(({depuis}) => Date.parse(depuis));
  const debut = instants[0];
  const fin = Math.max(Date.parse(date), instants[instants.length - 1]) + 180 * 86400e3;
  const plafond = Math.max(...historique.map(({prix}) => prix));
  const x = instant => 60 + 630 * (instant - debut) / (fin - debut);
  const y = prix => 110 - (plafond > 0 ? 90 * prix / plafond : 0);
  const trace = historique.map(({prix}, i) => `${i ? 'L' : 'M'}${x(instants[i])} ${y(prix)}H${x(instants[i + 1] ?? fin)}`).join('');
  const premier = historique[0];
  const dernier = historique[historique.length - 1];
  const titre = `Prix au cours du temps : de ${euros(premier.prix)} le ${jour(premier.depuis)} à ${euros(dernier.prix)} depuis le ${jour(dernier.depuis)}`;
  return svg('svg', {class: 'courbe', viewBox: '0 0 740 140', role: 'img', 'aria-label': titre},
    svg('title', {}, titre), svg('path', {class: 'axe', d: 'M60 110H700'}), svg('path', {class: 'trait', d: trace}),
    svg('text', {x: 52, y: y(premier.prix) + 4, 'text-anchor': 'end'}, enNombre.format(premier.prix)),
    svg('text', {x: 738, y: y(dernier.prix) - 6, 'text-anchor': 'end'}, enNombre.format(dernier.prix)),
    ...historique.filter((_, i) => i === 0 || x(instants[i]) - x(instants[i - 1]) > 60).map(({depuis}) =>
      svg('text', {x: x(Date.parse(depuis)), y: 130, 'text-anchor': 'middle'}, depuis.slice(0, 4))));
}

// A table whose columns from `chiffres` on are numbers.
function tableau(titre, colonnes, lignes, chiffres) {
  const classe = i => i >= chiffres ? 'n' : null;
  return el('div', {class: 'table', tabindex: 0, role: 'group', 'aria-label': titre}, el('table', {}, el('caption', {}, titre),
    el('thead', {}, el('tr', {}, ...colonnes.map((colonne, i) => el('th', {scope: 'col', class: classe(i)}, colonne)))),
    el('tbody', {}, ...lignes.map(ligne => el('tr', {}, ...ligne.map((cellule, i) => el('td', {class: classe(i)}, cellule)))))));
}

// --- The invoice: its fields ---

const NATURES = [['AS', 'Maladie'], ['MA', 'Maternité'], ['AT', 'Accident du travail'], ['PM', 'PM']];
const ASSOCIATIONS = [['', ''], ...['1', '2', '3', '4', '5'].map(code => [code, code])];

// Where a field stands in the invoice, its label, how it is typed.
const CHAMPS_FACTURE = [
  ['professionnel.numeroPS', 'Numéro du professionnel', 'texte'], ['professionnel.cleNumeroPS', 'Clé', 'texte'],
  ['professionnel.specialitePS', 'Spécialité (code)', 'texte'],
  ['professionnel.conventionPS', 'Convention', 'choix', [['1', '1 conventionné'], ['2', '2 avec dépassement'], ['3', '3 option'], ['0', '0 non conventionné'], ['', '']]],
  ['professionnel.agrementRadio', 'Agrément radio', 'texte'],
  ['beneficiaire.dateNaissance', 'Naissance du patient', 'date'],
  ['natureAssurance', "Nature d'assurance", 'choix', NATURES], ['caissePS', 'Caisse', 'texte'], ['reference', 'Référence de la facture', 'texte']];
const CHAMPS_LIGNE = [
  ['acte', 'Acte', 'acte'], ['activite', 'Activité', 'choix', []], ['phase', 'Phase', 'choix', []], ['date', 'Date', 'date'],
  ['modificateurs', 'Modificateurs', 'liste'], ['codeAssociation', 'Association', 'choix', ASSOCIATIONS],
  ['prixUnitaire', 'Prix unitaire (€)', 'montant'], ['baseRemboursement', 'Base de remboursement (€)', 'montant'],
  ['tauxRemboursement', 'Taux (0,7 pour 70 %)', 'montant'], ['exonerationTM', 'Exonération', 'texte']];
const AUTRES_CHAMPS_LIGNE = [
  ['prestation', 'Prestation', 'texte'], ['baseTheoriqueAMO', 'Base théorique AMO (€)', 'montant'], ['lieuExecution', "Lieu d'exécution", 'texte'],
  ['dents', 'Dents', 'liste'], ['codeRemboursement', 'Remboursement exceptionnel', 'texte'], ['supplementCharges', 'Supplément de charges', 'texte'],
  ['qualificatifDepense', 'Qualificatif de dépense', 'texte'],
  ['executant.numeroPS', 'Autre exécutant', 'texte'], ['executant.cleNumeroPS', 'Clé', 'texte'], ['executant.specialitePS', 'Sa spécialité', 'texte']];

let numeros = 0;

function champ([chemin, libelle, genre, choix], valeur = '') {
  const id = `champ-${++numeros}`;
  const attributs = {id, 'data-champ': chemin, 'data-genre': genre, autocomplete: 'off'};
  const saisie = genre === 'choix' ? el('select', attributs, ...choix.map(option))
    : el('input', {...attributs, type: genre === 'date' ? 'date' : 'text', inputmode: genre === 'montant' ? 'decimal' : null, spellcheck: 'false'});
  saisie.value = valeur;
  const boite = el('div', {class: genre === 'acte' ? 'combo' : null}, el('label', {for: id}, libelle), saisie);
  if (genre === 'acte') {
    completer(boite, saisie, libelle);
  }
  return boite;
}

const option = ([valeur, texte]) => el('option', {value: valeur}, texte || '(aucune)');

function lireChamp(saisie) {
  const texte = saisie.value.trim();
  switch (texte && saisie.dataset.genre) {
    case '': return undefined;
    case 'montant': return nombre(texte);
    case 'liste': return texte.toUpperCase().split(/[\s,;]+/).filter(Boolean);
    case 'acte': return texte.toUpperCase();
    default: return texte;
  }
}

function ecrireChamp(saisie, valeur) {
  if (saisie.tagName === 'SELECT' && ![...saisie.options].some(choix => choix.value === valeur)) {
    saisie.append(option([valeur, valeur]));
  }
  saisie.value = Array.isArray(valeur) ? valeur.join(' ') : typeof valeur === 'number' ? String(valeur).replace('.', ',') : valeur;
}

// What the fields of a part of the form say, as an object with its members' members.
function lirePartie(partie, depart = {}) {
  for (const saisie of partie.querySelectorAll('[data-champ]')) {
    const valeur = lireChamp(saisie);
    const [membre, sousMembre] = saisie.dataset.champ.split('.');
    if (valeur !== undefined) {
      if (sousMembre) {
        depart[membre] = {...depart[membre], [sousMembre]: valeur};
      } else {
        depart[membre] = valeur;
      }
    }
  }
  return depart;
}

function ecrirePartie(partie, valeurs) {
  const restes = {...valeurs};
  for (const saisie of partie.querySelectorAll('[data-champ]')) {
    const [membre, sousMembre] = saisie.dataset.champ.split('.');
    const valeur = sousMembre ? valeurs[membre]?.[sousMembre] : valeurs[membre];
    ecrireChamp(saisie, valeur ?? '');
    delete saisie.dataset.propose;
    delete restes[membre];
  }
  return restes;
}

// --- Act codes completed as they are typed ---

function completer(boite, saisie, libelle) {
  const listeId = `${saisie.id}-liste`;
  const choix = el('ul', {id: listeId, role: 'listbox', 'aria-label': libelle, hidden: true});
  const demanderActes = derniere();
  let actif = -1;
  garnir(saisie, {role: 'combobox', 'aria-autocomplete': 'list', 'aria-expanded': 'false', 'aria-controls': listeId}, []);
  boite.append(choix);

  const fermer = () => {
    choix.hidden = true;
    actif = -1;
    saisie.setAttribute('aria-expanded', 'false');
    saisie.removeAttribute('aria-activedescendant');
  };
  const choisir = code => {
    saisie.value = code;
    fermer();
    saisie.dispatchEvent(new Event('change', {bubbles: true}));
  };
  const viser = rang => {
    actif = (rang + choix.children.length) % choix.children.length;
    [...choix.children].forEach((element, i) => element.setAttribute('aria-selected', i === actif));
    saisie.setAttribute('aria-activedescendant', choix.children[actif].id);
    choix.children[actif].scrollIntoView({block: 'nearest'});
  };
  const proposer = attendre(150, async () => {
    const q = saisie.value.trim();
    if (q.length < 3 || document.activeElement !== saisie) {
      fermer();
      return;
    }
    try {
      const {actes} = await demanderActes(`/actes?${parametres({q, limite: 8})}`);
      choix.replaceChildren(...actes.map((acte, i) => el('li', {id: `${listeId}-${i}`, role: 'option', 'aria-selected': 'false',
        mousedown: evenement => { evenement.preventDefault(); choisir(acte.code); }}, el('b', {}, acte.code), ` ${acte.libelle}, ${euros(acte.prix)}`)));
      actif = -1;
      choix.hidden = actes.length === 0 || document.activeElement !== saisie;
      saisie.setAttribute('aria-expanded', String(!choix.hidden));
    } catch (erreur) {
      fermer();
    }
  });
  saisie.addEventListener('input', proposer);
  saisie.addEventListener('blur', fermer);
  saisie.addEventListener('keydown', evenement => {
    if (choix.hidden) {
      return;
    }
    if (evenement.key === 'ArrowDown' || evenement.key === 'ArrowUp') {
      evenement.preventDefault();
      viser(evenement.key === 'ArrowDown' ? actif + 1 : Math.max(actif, 0) - 1);
    } else if (evenement.key === 'Enter' && actif >= 0) {
      evenement.preventDefault();
      choisir($('b', choix.children[actif]).textContent);
    } else if (evenement.key === 'Escape') {
      fermer();
    }
  });
}

// --- The invoice: its lines ---

const boiteLignes = $('#lignes');
let reste = {};  // members of an invoice that the form does not show, kept as they came

function ajouterLigne(valeurs = null) {
  const partie = el('fieldset', {class: 'ligne'}, el('legend', {}, 'Ligne'),
    el('div', {class: 'grille'}, ...CHAMPS_LIGNE.map(description => champ(description))),
    el('p', {class: 'pale admis'}),
    el('details', {}, el('summary', {}, 'Autres champs'), el('div', {class: 'grille'}, ...AUTRES_CHAMPS_LIGNE.map(description => champ(description)))),
    el('div', {class: 'rangee'}, el('button', {type: 'button', click: () => oterLigne(partie)}, 'Retirer la ligne')));
  partie.reste = {};
  partie.outrepassees = new Set();
  boiteLignes.append(partie);
  if (valeurs) {
    const {outrepassees = [], ...autres} = ecrirePartie(partie, valeurs);
    partie.reste = autres;
    partie.outrepassees = new Set(outrepassees);
  } else {
    ecrirePartie(partie, {date: aujourdhui(), lieuExecution: '1', tauxRemboursement: 0.7});
  }
  numeroter();
  return partie;
}

function oterLigne(partie) {
  const suivante = partie.nextElementSibling || partie.previousElementSibling;
  partie.remove();
  numeroter();
  (suivante ? $('input', suivante) : $('#ajouter')).focus();
  controler();
}

const lignes = () => [...boiteLignes.children];

function numeroter() {
  lignes().forEach((partie, i) => {
    $('legend', partie).textContent = `Ligne ${i + 1}`;
    $('.rangee button', partie).setAttribute('aria-label', `Retirer la ligne ${i + 1}`);
  });
}

const saisieDe = (partie, nom) => $(`[data-champ="${nom}"]`, partie);

// The choices that the sheet of the act leaves, and, where `montants` says so, what it proposes for the fields that
// nobody typed in.
async function proposer(partie, montants = true) {
  const code = lireChamp(saisieDe(partie, 'acte'));
  const date = saisieDe(partie, 'date').value;
  if (!code) {
    return;
  }
  let fiche;
  try {
    fiche = await demander(`/actes/${encodeURIComponent(code)}?${parametres({date})}`);
  } catch (erreur) {
    $('.admis', partie).textContent = erreur.message;
    return;
  }
  const choisie = offrir(saisieDe(partie, 'activite'), fiche.activites.map(activite => [activite.code, codeEtLibelle(activite)]));
  const activite = fiche.activites.find(({code: sien}) => sien === choisie) || fiche.activites[0];
  if (!activite) {
    return;
  }
  const retenue = offrir(saisieDe(partie, 'phase'), activite.phases.map(({phase, prix}) => [phase, `${phase} (${euros(prix)})`]));
  const prix = activite.phases.find(({phase}) => phase === retenue)?.prix;
  if (montants) {
    remplir(partie, {prestation: activite.regroupement?.code, prixUnitaire: prix, baseRemboursement: prix, baseTheoriqueAMO: prix});
  }
  $('.admis', partie).textContent = `${fiche.libelleCourt}. Modificateurs admis : ${activite.modificateurs.map(({code: sien}) => sien).join(' ') || 'aucun'}.`;
}

// The choices of a list; what was chosen stays when it is among them.
function offrir(saisie, choix) {
  const avant = saisie.value;
  const garde = choix.some(([valeur]) => valeur === avant) ? avant : choix[0]?.[0] ?? '';
  saisie.replaceChildren(...choix.map(option));
  saisie.value = garde;
  return garde;
}

function remplir(partie, valeurs) {
  for (const [nom, valeur] of Object.entries(valeurs)) {
    const saisie = saisieDe(partie, nom);
    if (valeur !== undefined && valeur !== null && (saisie.value === '' || saisie.dataset.propose === saisie.value)) {
      ecrireChamp(saisie, valeur);
      saisie.dataset.propose = saisie.value;
    }
  }
}

function facturer(code) {
  let partie = lignes().find(ligne => saisieDe(ligne, 'acte').value === '');
  partie = partie || ajouterLigne();
  saisieDe(partie, 'acte').value = code;
  location.hash = 'facture';
  proposer(partie).then(controler);
}

// --- The invoice: its check ---

function lireFacture() {
  const facture = lirePartie($('#champs-facture'), {...reste});
  facture.professionnel = facture.professionnel || {};
  facture.beneficiaire = facture.beneficiaire || {};
  facture.lignes = lignes().map(partie => {
    const ligne = lirePartie(partie, {...partie.reste});
    return partie.outrepassees.size ? {...ligne, outrepassees: [...partie.outrepassees]} : ligne;
  });
  return facture;
}

// What every invoice has: asked for here, one by one as it is typed, rather than refused by the service.
const NECESSAIRES_FACTURE = ['professionnel.numeroPS', 'professionnel.specialitePS', 'beneficiaire.dateNaissance'];
const NECESSAIRES_LIGNE = ['date', 'prestation'];

function manquants() {
  const vides = (partie, noms) => noms.map(nom => saisieDe(partie, nom)).filter(saisie => saisie.value.trim() === '')
    .map(saisie => $(`label[for=${saisie.id}]`).textContent.toLowerCase());
  return [...vides($('#champs-facture'), NECESSAIRES_FACTURE),
    ...lignes().flatMap((partie, i) => vides(partie, NECESSAIRES_LIGNE).map(libelle => `${libelle} (ligne ${i + 1})`))];
}

const soumettre = derniere();

async function controler() {
  const facture = lireFacture();
  $('#json').textContent = JSON.stringify(facture, null, 2);
  for (const saisie of document.querySelectorAll('#facture [aria-invalid]')) {
    saisie.removeAttribute('aria-invalid');
    saisie.removeAttribute('aria-describedby');
  }
  if (!facture.lignes.some(ligne => ligne.acte || ligne.prestation)) {
    dire('', 'Choisir un acte pour commencer.');
    return null;
  }
  const absents = manquants();
  if (absents.length) {
    dire('', `Pas encore contrôlée ; il manque : ${absents.join(', ')}.`);
    return null;
  }
  try {
    const reponse = await soumettre('/controler?expliquer=1', {method: 'POST', headers: {'Content-Type': 'application/json'}, body: JSON.stringify(facture)});
    montrerReponse(reponse);
    return reponse;
  } catch (erreur) {
    if (!estAbandon(erreur)) {
      dire('', `Pas encore contrôlée : ${enClair(erreur)}`);
    }
    return null;
  }
}

const VERDICTS = {acceptee: 'Facture acceptée', a_outrepasser: 'Facture à corriger ou à outrepasser', refusee: 'Facture refusée'};

function dire(classe, texte) {
  $('#verdict').className = `verdict ${classe}`;
  $('#verdict').textContent = texte;
  $('#raisons').replaceChildren();
  $('#montants').replaceChildren();
}

// A fault of the invoice with the name of its field, which is marked.
function enClair(erreur) {
  const lu = /^\$\.(?:lignes\[(\d+)\]\.)?([\w.]+)(?:\[\d+\])? : (.*)$/s.exec(erreur.message);
  const partie = lu && (lu[1] === undefined ? $('#champs-facture') : lignes()[Number(lu[1])]);
  const saisie = partie && saisieDe(partie, lu[2]);
  if (!saisie) {
    return erreur.message;
  }
  saisie.setAttribute('aria-invalid', 'true');
  saisie.setAttribute('aria-describedby', 'verdict');
  const ou = lu[1] === undefined ? '' : `ligne ${Number(lu[1]) + 1}, `;
  return `${ou}${$(`label[for=${saisie.id}]`).textContent} : ${lu[3]}${erreur.cause ? ` (${erreur.cause})` : ''}`;
}

function montrerReponse(reponse) {
  const combien = reponse.erreurs.length;
  dire(reponse.verdict, `${VERDICTS[reponse.verdict]}${combien ? ` : ${combien} erreur${combien > 1 ? 's' : ''}` : ''}.`);
  $('#raisons').replaceChildren(...reponse.erreurs.map(raisonDe));
  $('#montants').replaceChildren(...montantsDe(reponse.lignes), ...exonerationDe(reponse.exoneration));
}

function raisonDe(erreur) {
  const ou = erreur.lignes.length ? ` — ligne${erreur.lignes.length > 1 ? 's' : ''} ${erreur.lignes.join(', ')}` : '';
  const outrepassable = erreur.niveau === 'O';
  return el('div', {class: 'raison'},
    el('p', {}, el('b', {}, erreur.reference), ou),
    el('p', {}, erreur.libelle),
    erreur.detail && erreur.detail !== erreur.libelle ? el('p', {}, erreur.detail) : null,
    erreur.donnees?.length ? el('ul', {class: 'pale donnees'}, ...erreur.donnees.map(donnee => el('li', {}, donneeDe(donnee)))) : null,
    outrepassable && erreur.lignes.length ? el('p', {}, el('button', {type: 'button', click: () => outrepasser(erreur)}, `Outrepasser ${erreur.reference}`))
      : el('p', {class: 'pale'}, outrepassable ? 'Peut être outrepassée.' : 'Ne peut pas être outrepassée.'));
}

// A datum of the reference: what it is, of what, its value, since when, and whether it was changed here.
function donneeDe({donnee, cles = {}, valeur, depuis, modifieeDepuis, phrase}) {
  if (phrase) {
    return phrase;
  }
  const quoi = Object.entries(cles).map(([cle, code]) => `${cle} ${code}`).join(', ');
  return [`${donnee}${quoi ? ` (${quoi})` : ''} : ${cellule(valeur)}`, depuis && `depuis le ${jour(depuis)}`,
    modifieeDepuis && `modifié ici depuis le ${jour(modifieeDepuis)}`].filter(Boolean).join(', ');
}

function outrepasser(erreur) {
  for (const numero of erreur.lignes) {
    lignes()[numero - 1]?.outrepassees.add(erreur.reference);
  }
  controler();
}

function montantsDe(detail) {
  if (!detail?.length) {
    return [];
  }
  const reprise = detail.some(ligne => ligne.baseCalculee !== null && (ligne.baseCalculee !== ligne.baseFacturee || ligne.prixCalcule !== ligne.prixFacture));
  return [tableau('Montants calculés', ['ligne', 'acte', 'prix', 'base'],
      detail.map(ligne => [String(ligne.numero), ligne.acte, euros(ligne.prixCalcule), euros(ligne.baseCalculee)]), 2),
    ...(reprise ? [el('p', {}, el('button', {type: 'button', click: () => reprendre(detail)}, 'Reprendre les montants calculés'))] : []),
    ...detail.filter(ligne => ligne.etapes && etapesDe(ligne).length).map(ligne => el('details', {open: true},
      el('summary', {}, `Ligne ${ligne.numero} : étapes du calcul`), ...etapesDe(ligne)))];
}

// Steps that change nothing are left out.
const compte = ({operation, operande}) => !(operation === 'fois' && operande === 1) && !(operation === 'plus' && operande === 0);
const OPERATIONS = {depart: '', fois: '× ', plus: '+ ', plafond: 'au plus ', arrondi: ''};

// From the price of the act to the base, step by step.
function etapesDe({numero, etapes}) {
  const {prix = [], base = [], modificateurs = [], association = {}} = etapes;
  const tables = [['Prix', prix], ['Base', base]].filter(([, pas]) => pas.length).map(([nom, pas]) =>
    tableau(`${nom} de la ligne ${numero}`, ['étape', 'calcul', 'résultat'], pas.filter(compte).map(({libelle, operation, operande, resultat, donnees = []}) => [
      [libelle, ...donnees.map(donnee => el('span', {class: 'pale donnee'}, donneeDe(donnee)))],
      operation === 'depart' || operation === 'arrondi' ? '' : OPERATIONS[operation] + (operation === 'fois' ? enNombre.format(operande) : euros(operande)),
      operation === 'arrondi' || operation === 'depart' ? euros(resultat) : new Intl.NumberFormat('fr-FR', {maximumFractionDigits: 5}).format(resultat)]), 1));
  const plusChere = association.ligneLaPlusChere;
  const selon = association.codeAssociation ? `, code association ${association.codeAssociation}`
    : association.regleTarifaire ? `, règle tarifaire ${association.regleTarifaire}` : '';
  const dits = [
    plusChere && plusChere !== numero ? `L'acte le plus cher de l'association est celui de la ligne ${plusChere}, ${euros(association.prixLePlusCher)}.` : '',
    association.complementaire ? 'Acte complémentaire, jamais réduit.' : association.reduite ? `Acte réduit${selon}.` : '',
    ...modificateurs.map(({code, compte, nombreQuiComptent, ...valeurs}) => `Modificateur ${code} : ${compte ? effet(valeurs) : `non compté, au-delà des ${nombreQuiComptent} qui comptent`}.`)];
  return [...tables, ...liste(dits.filter(Boolean), dit => el('li', {}, dit))];
}

// Which sum was compared with the threshold.
function exonerationDe(exoneration) {
  if (!exoneration) {
    return [];
  }
  return [el('p', {}, `Facture ${exoneration.libelle}.`), ...liste(exoneration.seances || [], ({date, lignes: siennes, somme, seuil}) => el('li', {},
    `Séance du ${jour(date)} : ${euros(somme)} (lignes ${siennes.map(({numero}) => numero).join(', ')})${seuil === null ? '' : ` pour un seuil de ${euros(seuil)}`}.`))];
}

// Prices first: the bases that are computed follow from those that are billed.
async function reprendre(detail) {
  recopier(detail, ['prixUnitaire'], 'prixCalcule');
  const reponse = await controler();
  if (reponse) {
    recopier(reponse.lignes, ['baseRemboursement', 'baseTheoriqueAMO'], 'baseCalculee');
    controler();
  }
}

function recopier(detail, noms, calcule) {
  for (const ligne of detail) {
    const partie = lignes()[ligne.numero - 1];
    for (const nom of partie && ligne[calcule] !== null ? noms : []) {
      ecrireChamp(saisieDe(partie, nom), ligne[calcule]);
    }
  }
}

const formulaire = $('#facture');
const controlerBientot = attendre(300, controler);
formulaire.addEventListener('submit', evenement => evenement.preventDefault());
formulaire.addEventListener('input', controlerBientot);
formulaire.addEventListener('change', async ({target}) => {
  if (target.dataset.champ && ['acte', 'activite', 'phase', 'date'].includes(target.dataset.champ)) {
    await proposer(target.closest('.ligne'));
    controler();
  }
});
$('#ajouter').addEventListener('click', () => $('input', ajouterLigne()).focus());
$('#vider').addEventListener('click', () => remettre());
$('#ouvrir').addEventListener('change', async ({target}) => {
  const [fichier] = target.files;
  target.value = '';
  $('#ouverture').textContent = '';
  try {
    const facture = JSON.parse(await fichier.text());
    if (!Array.isArray(facture.lignes)) {
      throw new Error('pas de lignes');
    }
    remettre(facture);
  } catch (faute) {
    $('#ouverture').textContent = `${fichier.name} n'est pas une facture en JSON.`;
  }
});

function remettre(facture = null) {
  boiteLignes.replaceChildren();
  const {lignes: siennes = [], ...autres} = ecrirePartie($('#champs-facture'), facture || {natureAssurance: 'AS', professionnel: {conventionPS: '1'}});
  reste = autres;
  for (const ligne of facture ? facture.lignes : [null]) {
    const partie = ajouterLigne(ligne);
    if (ligne) {
      proposer(partie, false);
    }
  }
  controler();
}

// --- Comparison ---

const comparer = derniere();

$('#comparaison').addEventListener('submit', async evenement => {
  evenement.preventDefault();
  $('#bilan').textContent = 'Comparaison…';
  $('#ecarts').replaceChildren();
  try {
    montrerEcarts(await comparer(`/comparer?${parametres({avant: $('#avant').value, apres: $('#apres').value})}`));
  } catch (erreur) {
    if (!estAbandon(erreur)) {
      $('#bilan').textContent = erreur.message;
    }
  }
});

const PREMIERES_COLONNES = ['acte', 'activite', 'phase', 'modificateur'];
// "actesAjoutes" as "actes ajoutes": what the service's words were made of.
const enMots = cle => cle.replace(/[A-Z]/g, lettre => ` ${lettre.toLowerCase()}`);
const TITRES = {actesAjoutes: 'actes ajoutés', libelles: 'libellés'};

function cellule(valeur) {
  return valeur === null || valeur === undefined ? '' : typeof valeur === 'boolean' ? (valeur ? 'oui' : 'non') : typeof valeur === 'number' ? enNombre.format(valeur)
    : typeof valeur === 'object' ? Object.values(valeur).map(cellule).join(' ') : jour(String(valeur));
}

function montrerEcarts(ecarts) {
  const listes = Object.entries(ecarts).filter(([, lignesDuGenre]) => Array.isArray(lignesDuGenre) && lignesDuGenre.length);
  $('#bilan').textContent = listes.length ? listes.map(([genre, {length}]) => `${TITRES[genre] || enMots(genre)} : ${length}`).join(', ') : 'Aucune différence.';
  $('#ecarts').replaceChildren(...listes.map(([genre, lignesDuGenre]) => {
    const vues = [...new Set(lignesDuGenre.flatMap(Object.keys))];
    const colonnes = [...PREMIERES_COLONNES.filter(nom => vues.includes(nom)), ...vues.filter(nom => !PREMIERES_COLONNES.includes(nom))];
    const titre = `${TITRES[genre] || enMots(genre)} (${lignesDuGenre.length})`;
    return tableau(titre, colonnes.map(enMots), lignesDuGenre.map(ligne => colonnes.map(nom => cellule(ligne[nom]))), colonnes.length);
  }));
}

// --- Screens ---

const ECRANS = {chercher: 'Actes', acte: 'Acte', facture: 'Facture', comparer: 'Comparer'};

function montrerEcran(evenement) {
  const [nom, ...suite] = decodeURIComponent(location.hash.slice(1)).split('/');
  const ecran = ECRANS[nom] ? nom : 'chercher';
  for (const autre of Object.keys(ECRANS)) {
    $(`#ecran-${autre}`).hidden = autre !== ecran;
  }
  for (const lien of document.querySelectorAll('nav a')) {
    const ici = lien.hash === `#${ecran === 'acte' ? 'chercher' : ecran}`;
    if (ici) {
      lien.setAttribute('aria-current', 'page');
    } else {
      lien.removeAttribute('aria-current');
    }
  }
  document.title = `${ECRANS[ecran]} — noxlux`;
  if (ecran === 'acte') {
    montrerActe(suite[0] || '', suite[1]);
  }
  if (evenement) {
    $(`#titre-${ecran}`).focus();  // who does not see the screen hears that it changed
  }
}

async function presenter() {
  try {
    const {noxlux, reference, actes, references} = await demander('/versions');
    $('#reference').textContent = [`${enNombre.format(actes)} actes`, `CCAM version ${Number(reference.versionBaseCCAM)}`, `noxlux ${noxlux}`].join(', ');
    for (const [id, rang] of [['avant', references.length > 1 ? 1 : 0], ['apres', 0]]) {
      $(`#${id}`).replaceChildren(...references.map(nom => option([nom, nom === 'servie' ? 'celle de ce service' : nom])));
      $(`#${id}`).selectedIndex = rang;
    }
    if (references.length === 1) {
      $('#bilan').textContent = 'Ce service ne connaît que sa référence ; « noxlux serveur --autre NOM=DIR » lui en fait connaître une autre.';
    }
  } catch (erreur) {
    $('#reference').textContent = erreur.statut === 401 ? '' : erreur.message;
  }
}

$('.saut').addEventListener('click', evenement => {
  evenement.preventDefault();
  $('#contenu').focus();
});
$('#champs-facture').append(...CHAMPS_FACTURE.map(description => champ(description)));
$('#date-recherche').value = aujourdhui();
window.addEventListener('hashchange', montrerEcran);
remettre();
presenter();
montrerEcran();
