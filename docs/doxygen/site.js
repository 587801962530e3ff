// SPDX-License-Identifier: LGPL-2.1-or-later
//
// The theme, the buttons that copy code, the menu of narrow windows, and the search. The pages are readable
// without it. It loads nothing from a network.

"use strict";

// The theme follows the system until the reader selects one. Some browsers allow no storage for local files.
const themeKey = "zybase-theme";
const darkSystem = matchMedia("(prefers-color-scheme: dark)");

function storedTheme() {
    try {
        return localStorage.getItem(themeKey);
    } catch {
        return null;
    }
}

function storeTheme(theme) {
    try {
        localStorage.setItem(themeKey, theme);
    } catch {
        // The choice is valid for this page only.
    }
}

function currentTheme() {
    return document.documentElement.dataset.theme || (darkSystem.matches ? "dark" : "light");
}

const selectedTheme = storedTheme();
if (selectedTheme === "dark" || selectedTheme === "light")
    document.documentElement.dataset.theme = selectedTheme;

function createButton(className, label) {
    const button = document.createElement("button");
    button.type = "button";
    button.className = className;
    button.textContent = label;
    return button;
}

function addThemeButton() {
    const button = createButton("theme", "");
    const update = () => {
        button.setAttribute("aria-label", currentTheme() === "dark" ? "Use the light theme" : "Use the dark theme");
        button.title = button.getAttribute("aria-label");
    };
    button.addEventListener("click", () => {
        const theme = currentTheme() === "dark" ? "light" : "dark";
        document.documentElement.dataset.theme = theme;
        storeTheme(theme);
        update();
    });
    darkSystem.addEventListener("change", update);
    update();
    document.querySelector("header").append(button);
}

function addCopyButtons() {
    for (const code of document.querySelectorAll("pre.fragment")) {
        const block = document.createElement("div");
        block.className = "code";
        code.replaceWith(block);
        const button = createButton("copy", "Copy");
        button.addEventListener("click", async () => {
            try {
                await navigator.clipboard.writeText(code.textContent + "\n");
                button.textContent = "Copied";
            } catch {
                getSelection().selectAllChildren(code);
                button.textContent = "Press Ctrl+C";
            }
            setTimeout(() => (button.textContent = "Copy"), 2000);
        });
        block.append(code, button);
    }
}

// The menu and the contents are open if there is room beside the text.
function openIfWide(selector, query) {
    const details = document.querySelector(selector);
    if (!details)
        return;
    const wide = matchMedia(query);
    const update = () => (details.open = wide.matches);
    wide.addEventListener("change", update);
    update();
}

// The parts of a name: "GenerateQRCode" has "generate", "qr" and "code".
function partsOf(text) {
    const parts = text.match(/[A-Z]+(?![a-z])[0-9]*|[A-Z]?[a-z]+[0-9]*|[0-9]+/g) || [];
    return parts.map(part => part.toLowerCase());
}

function scoreOfTerm(term, entry) {
    const [name, scope, , , brief, words] = entry;
    const lowerName = name.toLowerCase();
    const partsOfName = partsOf(name);
    if (partsOfName.includes(term) || lowerName.replace("()", "") === term)
        return 12;
    if (partsOfName.some(part => part.startsWith(term)))
        return 8;
    if (term.length > 2 && lowerName.includes(term))
        return 6;
    const wordsOfBrief = brief.toLowerCase().match(/[a-z0-9]+/g) || [];
    if (wordsOfBrief.includes(term))
        return 5;
    if (partsOf(scope).some(part => part.startsWith(term)) || scope.toLowerCase().endsWith(term))
        return 4;
    if (wordsOfBrief.some(word => word.startsWith(term)))
        return 3;
    const spaced = " " + words;
    if ((spaced + " ").includes(" " + term + " "))
        return 2;
    return spaced.includes(" " + term) || (term.length > 3 && spaced.includes(term)) ? 1 : 0;
}

// Returns the entries that contain all terms of the query, best first.
function search(query) {
    const terms = query.toLowerCase().match(/[\p{L}\p{N}_]+/gu) || [];
    if (terms.length === 0)
        return [];
    const bonus = {page: 1.5, class: 1, section: -0.5};
    const results = [];
    for (const entry of searchIndex) {
        const scores = terms.map(term => scoreOfTerm(term, entry));
        const sum = scores.reduce((total, score) => total + score);
        if (!scores.includes(0))
            results.push({entry, score: sum / terms.length + (bonus[entry[2]] || 0)});
    }
    return results.sort((one, other) => other.score - one.score).map(result => result.entry);
}

function showResults(query) {
    const results = search(query);
    const shown = results.slice(0, 50);
    const state = document.getElementById("search-state");
    if (!query.trim())
        state.textContent = "Enter a word, such as \"proxy\" or \"md5\", in the field at the top.";
    else if (results.length === 0)
        state.textContent = `Nothing found for "${query}". Try one shorter word.`;
    else
        state.textContent = `${results.length} ${results.length === 1 ? "result" : "results"} for "${query}"`
            + (results.length > shown.length ? `; these are the first ${shown.length}` : "");
    document.getElementById("search-results").replaceChildren(...shown.map(([name, scope, kind, url, brief]) => {
        const item = document.createElement("li");
        const link = document.createElement("a");
        link.href = url;
        link.textContent = scope && kind !== "section" ? `${scope}::${name}` : name;
        const note = document.createElement("span");
        note.textContent = kind === "section" ? `section of ${scope}` : kind;
        const description = document.createElement("p");
        description.textContent = brief;
        item.append(link, " ", note, description);
        return item;
    }));
}

function startSearch() {
    const field = document.querySelector("header input");
    document.addEventListener("keydown", event => {
        const hasModifier = event.ctrlKey || event.altKey || event.metaKey;
        if (event.key === "/" && !hasModifier && !event.target.closest("input")) {
            event.preventDefault();
            field.focus();
        }
    });
    if (!document.getElementById("search-results"))
        return;
    field.value = new URLSearchParams(location.search).get("q") || "";
    field.addEventListener("input", () => showResults(field.value));
    field.focus();
    showResults(field.value);
}

document.addEventListener("DOMContentLoaded", () => {
    addThemeButton();
    addCopyButtons();
    openIfWide("nav.menu details", "(min-width: 60rem)");
    openIfWide("nav.toc details", "(min-width: 80rem)");
    startSearch();
});
