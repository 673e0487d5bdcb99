// Reads lines of {kind, text} and writes for each what other programs than ours read: null where they refuse it.
import { createInterface } from "node:readline";
import { parse as parseZone } from "mrz";
import { parse as parseCode } from "aamva-parser";

const SEXES = {male: "M", female: "F"};
const day = (date) => (date ? date.toISOString().slice(0, 10) : null);

function readZone(text) {
  const zone = parseZone(text.split("\n"));
  if (!zone.valid) return null;
  const fields = {};
  for (const name of ["documentCode", "documentNumber", "birthDate", "expirationDate", "issuingState", "nationality",
                      "lastName", "firstName", "sex"])
    fields[name] = name === "sex" ? SEXES[zone.fields.sex] ?? "<" : zone.fields[name] ?? "";
  return fields;
}

function readCode(text) {
  const code = parseCode(text);
  const middle = code.middleName === "NONE" ? null : code.middleName;  // as the standard writes that there is none
  return {surname: code.lastName, givenNames: [code.firstName, middle].filter(Boolean).join(" "),
          documentNumber: code.driversLicenseId, birthDate: day(code.dateOfBirth), issueDate: day(code.issueDate),
          expiryDate: day(code.expirationDate), sex: {Male: "M", Female: "F"}[code.gender] ?? "X"};
}

for await (const line of createInterface({input: process.stdin})) {
  const {kind, text} = JSON.parse(line);
  let read = null;
  try {
    read = kind === "zone" ? readZone(text) : readCode(text);
  } catch (error) {
    read = null;  // they throw at what they cannot read
  }
  console.log(JSON.stringify(read));
}
