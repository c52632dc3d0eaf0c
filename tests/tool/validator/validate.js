// Validates each file of the command line and prints one JSON object a file:
//   {"file": ..., "errors": n, "warnings": n, "messages": [...]}
// Ends with 0 when no file has errors or warnings, with 1 when one has, and with 2 when a file cannot
// be read or the validator is missing.
'use strict';

const fs = require('fs');

function loadValidator() {
  try {
    return require('gltf-validator');
  } catch (error) {
    console.error('gltf-validator is not installed here: ' + error.message);
    process.exit(2);
  }
}

async function validate(validator, file) {
  const bytes = new Uint8Array(fs.readFileSync(file));
  const report = await validator.validateBytes(bytes, {format: 'glb', maxIssues: 50});
  const messages = report.issues.messages.filter((message) => message.severity < 2);
  return {file, errors: report.issues.numErrors, warnings: report.issues.numWarnings, messages};
}

async function main() {
  const validator = loadValidator();
  let clean = true;
  for (const file of process.argv.slice(2)) {
    const result = await validate(validator, file);
    console.log(JSON.stringify(result));
    clean = clean && result.errors === 0 && result.warnings === 0;
  }
  process.exitCode = clean ? 0 : 1;
}

main().catch((error) => {
  console.error(error.message || String(error));
  process.exitCode = 2;
});
