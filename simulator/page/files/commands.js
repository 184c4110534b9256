// Commands for the chosen payload: queue one, and see what became of each.

import { onClick, onSubmit, post } from "./api.js";
import { showBytes } from "./bytes.js";
import { $, h, keyed, setText, whenChanged } from "./dom.js";
import { feed, on } from "./feed.js";
import { bytesText, shellWord } from "./format.js";
import { speak } from "./notices.js";
import { chosenPayload, onChosen } from "./payloads.js";

const steps = ["queued", "delivered", "answered"];

function answerNode(answer) {
    const kind = !answer.succeeded ? "bad" : answer.complete ? "good" : "plain";
    const word = !answer.succeeded ? "failed" : answer.complete ? "" : "so far";
    const node = h("div", { class: `answer ${kind}` },
        word === "" ? null : h("span", { class: "answer-word" }, word),
        h("pre", null, answer.text === "" ? "(an empty answer)" : answer.text));
    if (answer.size > new TextEncoder().encode(answer.text).length) {
        node.append(onClick(h("button", { type: "button", class: "quiet" }, `All ${bytesText(answer.size)}`),
            () => showBytes(`Answer to ${answer.tag}`, `/sim/v1/answers/${answer.number}`, `answer-${answer.number}.txt`)));
    }
    return node;
}

function outcome(command) {
    if (command.state !== "answered") {
        return [command.state, command.state === "queued" ? "plain" : "warn"];
    }
    return command.succeeded === false ? ["failed", "bad"] : ["succeeded", "good"];
}

function makeCommand() {
    const tag = h("code", { class: "tag-text" });
    const kind = h("span", { class: "chip plain" }, "file");
    const text = h("span", { class: "command-text mono" });
    const path = h("span", { class: "path", "aria-hidden": "true" }, ...steps.map(() => h("i")));
    const word = h("span", { class: "chip" });
    const answers = h("div", { class: "answers" });
    const row = h("li", { class: "command" },
        h("div", { class: "command-line" }, tag, kind, text, path, word), answers);
    const drawAnswers = whenChanged((list) => answers.replaceChildren(...list.map(answerNode)));
    row.update = ({ command, replies }) => {
        setText(tag, command.tag === "" ? "no tag" : command.tag);
        setText(text, command.command);
        kind.hidden = !command.isFile;
        const [label, colour] = outcome(command);
        setText(word, label);
        word.className = `chip ${colour}`;
        const reached = steps.indexOf(command.state);
        path.className = `path ${colour}`;
        [...path.children].forEach((dot, index) => dot.classList.toggle("done", index <= reached));
        drawAnswers(replies);
    };
    return row;
}

/** Newest first; answers that no command waited for are shown as if one had. */
function rowsOf(payload) {
    const rows = payload.commands.map((command) => ({ key: `c${command.number}`, command, at: command.number, replies: [] }));
    const byNumber = new Map(rows.map((row) => [row.command.number, row]));
    for (const answer of payload.answers) {
        const row = byNumber.get(answer.command);
        if (row) {
            row.replies.push(answer);
        } else {
            const command = { tag: answer.tag, command: "answer to no command that waits", state: "answered",
                isFile: false, succeeded: answer.succeeded };
            rows.push({ key: `a${answer.number}`, command, at: answer.number, replies: [answer] });
        }
    }
    return rows.sort((a, b) => b.at - a.at).slice(0, 200);
}

const drawNone = whenChanged((id) => {
    const body = shellWord(JSON.stringify({ id, command: "status" }));
    $("command-none").replaceChildren(
        h("p", null, "No command yet. Queue one above, or from a shell:"),
        h("pre", null, `curl -d ${body} \\\n  http://${location.host}/sim/v1/commands`),
        h("p", null, "It waits here until the payload polls for it."));
});

const drawList = whenChanged((news, payload) => {
    keyed($("command-list"), rowsOf(payload), ({ key }) => `${payload.id}\n${key}`, makeCommand);
});

function draw() {
    const payload = chosenPayload();
    if (!payload) {
        return;
    }
    drawList([payload.id, payload.commands, payload.answers], payload);
    const waiting = payload.commands.filter((command) => command.state !== "answered").length;
    setText($("count-commands"), waiting === 0 ? "" : String(waiting));
    $("command-none").hidden = payload.commands.length + payload.answers.length > 0;
    if (!$("command-none").hidden) {
        drawNone(payload.id);
    }
}

/** The tag that is filled in: behind the highest "tN" of all payloads. */
function nextTag() {
    let highest = 0;
    for (const payload of feed.state?.payloads ?? []) {
        for (const { tag } of payload.commands) {
            const number = /^t(\d{1,9})$/.exec(tag);
            highest = Math.max(highest, number ? Number(number[1]) : 0);
        }
    }
    return `t${highest + 1}`;
}

let filledIn = "";

/** Only while the person has not typed one. */
function fillInTag() {
    const { tag } = $("command-form").elements;
    if (tag.value === filledIn && document.activeElement !== tag) {
        filledIn = nextTag();
        if (tag.value !== filledIn) {
            tag.value = filledIn;
        }
    }
}

const told = new Map();

/** Tells those who hear the page what became of commands. */
function announce() {
    for (const payload of feed.state.payloads) {
        for (const command of payload.commands) {
            const [word] = outcome(command);
            const before = told.get(command.number);
            if (before !== undefined && before !== word) {
                speak(`Command ${command.tag} for ${payload.id}: ${word}`);
            }
            told.set(command.number, word);
        }
    }
}

export function startCommands() {
    onChosen(draw);
    on("state", fillInTag);
    on("state", announce);
    const form = $("command-form");
    onSubmit(form, async (data) => {
        const body = { id: chosenPayload().id, command: data.get("command"), isFile: data.get("kind") === "file" };
        const queued = await post("commands", data.get("tag") === "" ? body : { ...body, tag: data.get("tag") });
        speak(`Command ${queued.tag} for ${body.id}: queued`);
        form.elements.command.value = "";
        form.elements.tag.value = filledIn;
        form.elements.command.focus();
    });
    form.addEventListener("change", () => {
        const file = form.elements.kind.value === "file";
        form.elements.command.placeholder = file ? "/path/of/a/file" : "status";
    });
}
