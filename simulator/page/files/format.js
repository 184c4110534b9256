// Numbers, times and sizes as a person reads them.

export function bytesText(count) {
    if (count < 1000) {
        return `${count} B`;
    }
    const units = ["kB", "MB", "GB", "TB"];
    let value = count;
    let unit = -1;
    while (value >= 999.5 && unit < units.length - 1) {
        value /= 1000;
        ++unit;
    }
    return `${value < 10 ? value.toFixed(1) : Math.round(value)} ${units[unit]}`;
}

/** A time on the wire: "3 ms", "1.25 s". */
export function secondsText(seconds) {
    if (seconds < 0.9995) {
        return `${Math.round(seconds * 1000)} ms`;
    }
    return seconds < 100 ? `${seconds.toFixed(2)} s` : spanText(seconds);
}

/** A span as two units at most: "45 s", "2 min 05 s", "3 h 20 min", "2 d 4 h". */
export function spanText(seconds) {
    const whole = Math.max(0, Math.round(seconds));
    const two = (number) => String(number).padStart(2, "0");
    if (whole < 60) {
        return `${whole} s`;
    }
    if (whole < 3600) {
        return `${Math.floor(whole / 60)} min ${two(whole % 60)} s`;
    }
    if (whole < 86400) {
        return `${Math.floor(whole / 3600)} h ${two(Math.floor((whole % 3600) / 60))} min`;
    }
    return `${Math.floor(whole / 86400)} d ${Math.floor((whole % 86400) / 3600)} h`;
}

export function clockText(unixSeconds) {
    const date = new Date(unixSeconds * 1000);
    return Number.isNaN(date.getTime()) ? "–" : date.toISOString().slice(0, 19).replace("T", " ");
}

/** "57° 30.120′ N" */
function angleText(degrees, positive, negative) {
    const minutes = Math.round(Math.abs(degrees) * 60000) / 1000;
    const rest = (minutes % 60).toFixed(3).padStart(6, "0");
    return `${Math.floor(minutes / 60)}° ${rest}′ ${degrees < 0 ? negative : positive}`;
}

export function placeText(latitude, longitude) {
    return `${angleText(latitude, "N", "S")}  ${angleText(longitude, "E", "W")}`;
}

/** One word of a shell's line, whatever it is. */
export function shellWord(text) {
    return /^\w[\w.-]*$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

export function distanceText(metres) {
    return metres < 1000 ? `${metres} m` : `${metres / 1000} km`;
}

export function plural(count, one, many = `${one}s`) {
    return `${count} ${count === 1 ? one : many}`;
}
