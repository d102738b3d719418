// The page comes to life.
{
    const data = JSON.parse(document.getElementById('data').textContent);
    const search = new Search();
    const pages = {check: Report, diff: Differences};
    const page = new (pages[data.command] || Explanation)(data, search);
    page.render(document.getElementById('main'));
}
