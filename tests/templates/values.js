// How the pages read, word and order values: what each expression gives.
const VALUE_CASES = [
  ["plain numbers", () => [plainNumber("12.5"), plainNumber(""), plainNumber("1,2")], [12.5, NaN, NaN]],
  [
    "numbers for readers",
    () => ["13,479.932", "13.479,932", "1\u202f234,500", "34.555", "-1.000", "7", "a1", "11/22/2026"].map(localNumber),
    [13479.932, 13479.932, 1234.5, 34.555, -1, 7, NaN, NaN],
  ],
  ["bytes", () => [0, 1023, 1024, 239133, 5e9, 136.415].map(roundBytes), ["0 B", "1,023 B", "1 KiB", "234 KiB", "4.66 GiB", "136 B"]],
  ["shares", () => [0.540109, 0.0001, 0, NaN, Infinity].map(percent), ["54 %", "< 0.1 %", "0 %", "–", "–"]],
  ["durations", () => ["00:00:17", "2d 01:00:00.5", "0:01:02.25", "3.5", "x"].map(durationSeconds), [17, 176400.5, 62.25, 3.5, NaN]],
  ["months first", () => order(dateKeys(["02/01/2026 10:00:00", "01/31/2026 23:59:59", ""])), [1, 0, 2]],
  ["days first", () => order(dateKeys(["01.02.2026 10:00:00", "31.01.2026 23:59:59"])), [1, 0]],
  ["years first", () => order(dateKeys(["2026-02-01 00:00:00.25", "2026-02-01 00:00:00.3", "2025-12-31"])), [2, 0, 1]],
  ["addresses", () => order(["192.0.2.10", "192.0.2.9", "B", "a"].map(textKey)), [1, 0, 3, 2]],
  ["severities", () => order(["Severe", "Minor", "Informational"].map(KINDS.severity.key)), [2, 1, 0]],
  ["what has no value", () => [-1, 1].flatMap((sign) => [...sortedPlaces([2, NaN, 1, 2], sign)]), [0, 3, 2, 1, 2, 0, 3, 1]],
  ["kinds", () => [["1", "", "2.5"], ["1", "b"], ["", ""]].map(guessKind), ["number", "text", "text"]],
  ["trends", () => trendPoints("1|2.5|x|1,234.500|"), [1, 2.5, NaN, 1234.5]],
  ["changes", () => [changeOf("5|3"), changeOf("a|b")], [-2, NaN]],
  ["axes", () => [roundUp(735), roundUp(239133, true), roundUp(4)], [1000, 409600, 4]],
  [
    "lines of CSV",
    () => [commaLine(['a "b"', "1,5", "=HYPERLINK(1)", "-5", "+x"]), tabLine(["a\tb", "@x"])],
    ['"a ""b""","1,5",\'=HYPERLINK(1),-5,\'+x', "a b\t'@x"],
  ],
  ["thinning", () => thinOut([1, 2, 3, 4, 5, 6, 7, 8, 9], 3), [1, 5, 9]],
];

function order(keys) {
  return Array.from(sortedPlaces(keys, 1));
}

function checkValues() {
  const failures = [];
  for (const [name, give, expected] of VALUE_CASES) {
    const got = give();
    const isSame = got.length === expected.length && got.every((value, i) => Object.is(value, expected[i]));
    if (!isSame) failures.push(`${name}: got ${got.join(" | ")}, expected ${expected.join(" | ")}`);
  }
  return failures;
}
